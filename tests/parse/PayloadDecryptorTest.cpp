#include "parse/ResponseDocs.h"

#include <gtest/gtest.h>

using namespace velmora::zuvolib;
using namespace zuvotest;

namespace {

TEST(PayloadDecryptor, BothFormsAndAMissingContext) {
    const std::string fragment = "<zuvo:cticket expiration=\"99\">T1ck</zuvo:cticket>\n";
    const Context context = keyedContext();
    const PayloadDecryptor plain(Context(), base64(fragment), false);
    const PayloadDecryptor sealed(context, seal(context, fragment), true);
    for (const PayloadDecryptor* p : {&plain, &sealed}) {
        EXPECT_EQ(p->getValueString("zuvo:cticket"), "T1ck");
        EXPECT_EQ(p->getAttr("zuvo:cticket", "expiration"), "99");
        EXPECT_EQ(p->getValueUcVector("zuvo:cticket"),
                  std::vector<unsigned char>({'T', '1', 'c', 'k'}));
        EXPECT_TRUE(p->getValueUcVector("zuvo:rs").empty());
    }
    EXPECT_EQ(PayloadDecryptor(Context(), "", false).getValueString("xml"), "");
    try {
        PayloadDecryptor(Context(), "not even Base64!", true);
        FAIL() << "no exception";
    } catch (const ZuvoExceptionNoCipherContext& e) {
        EXPECT_STREQ(e.what(), "No ZUVO cipher context");
    }
}

} // namespace
