// Response envelope and header into ResponseData; result body to the subclass.

#include "zuvolib/parse/ParentParser.h"

#include "parse/ElementParts.h"
#include "parse/PayloadOpenFailure.h"
#include "parse/TagTypeIndex.h"
#include "zuvolib/ZuvoExceptionNoCipherContext.h"
#include "zuvolib/parse/PayloadDecryptor.h"

#include <QRXClient/lexical_cast.h>

#include <cstring>
#include <stdexcept>
#include <utility>

namespace velmora {
namespace zuvolib {

using Velmora::QRXClient::lexical_cast;
typedef ParentParser P;

namespace {

// The base tag table; row number = id.
const P::TagConfigTable config[] = {
    {P::TAG_START, "<start>"},
    {P::TAG_RESPONSE, "response"},
    {P::TAG_RESPONSEHEADER, "responseheader"},
    {P::TAG_RESULT, "result"},
    {P::TAG_PARAMETERS, "parameters"},
    {P::TAG_LOGUPLOADS, "loguploads"},
    {P::TAG_STATUS, "status"},
    {P::TAG_ERROR, "error"},
    {P::TAG_PROTOCOLVERSION, "protocolversion"},
    {P::TAG_RETRYCONTROL, "retrycontrol"},
    {P::TAG_MINTIMEOUT, "mintimeout"},
    {P::TAG_LOWFREQUENCYPOLLINTERVAL, "lowfrequencypollinterval"},
    {P::TAG_MEDIUMFREQUENCYPOLLINTERVAL, "mediumfrequencypollinterval"},
    {P::TAG_HIGHFREQUENCYPOLLINTERVAL, "highfrequencypollinterval"},
    {P::TAG_HIGHTOMEDIUMPOLLSWITCHINTERVAL, "hightomediumpollswitchinterval"},
    {P::TAG_MEDIUMTOLOWPOLLSWITCHINTERVAL, "mediumtolowpollswitchinterval"},
    {P::TAG_LOGINTERVAL, "loginterval"},
    {P::TAG_LOGLEVEL, "loglevel"},
    {P::TAG_SUPPORTPHONE, "supportphone"},
    {P::TAG_SUCCESS, "success"},
    {P::TAG_CODE, "code"},
    {P::TAG_ACTIONID, "actionid"},
    {P::TAG_USERTEXT, "usertext"},
    {P::TAG_METHOD, "method"},
    {P::TAG_PAYLOAD, "payload"},
    {P::TAG_APPLICATION, "application"},
    {P::TAG_PERFORMANCE, "performance"},
    {P::TAG_CRASH, "crash"},
    {P::TAG_MOVIELOG, "movielog"},
    {P::TAG_TESTDRIVERIPADDR, "testdriveripaddr"},
    {P::TAG_INVALID, "<invalid>"},
};
const unsigned int CONFIG_COUNT = sizeof(config) / sizeof(config[0]);
static_assert(CONFIG_COUNT == P::TAG_FIRST_OWN, "one row per base id");

// Header elements whose text is a signed number.
const struct {
    unsigned int tagType;
    int ResponseData::*field;
} INT_FIELDS[] = {
    {P::TAG_RETRYCONTROL, &ResponseData::retryControl},
    {P::TAG_MINTIMEOUT, &ResponseData::minTimeout},
    {P::TAG_LOWFREQUENCYPOLLINTERVAL, &ResponseData::lowFrequencyPollInterval},
    {P::TAG_MEDIUMFREQUENCYPOLLINTERVAL, &ResponseData::mediumFrequencyPollInterval},
    {P::TAG_HIGHFREQUENCYPOLLINTERVAL, &ResponseData::highFrequencyPollInterval},
    {P::TAG_HIGHTOMEDIUMPOLLSWITCHINTERVAL, &ResponseData::highToMediumPollSwitchInterval},
    {P::TAG_MEDIUMTOLOWPOLLSWITCHINTERVAL, &ResponseData::mediumToLowPollSwitchInterval},
    {P::TAG_LOGINTERVAL, &ResponseData::logInterval},
    {P::TAG_CODE, &ResponseData::code},
    {P::TAG_ACTIONID, &ResponseData::actionId},
};

// Header elements whose text is kept as it stands.
const struct {
    unsigned int tagType;
    std::string ResponseData::*field;
} TEXT_FIELDS[] = {
    {P::TAG_PROTOCOLVERSION, &ResponseData::protocolVersion},
    {P::TAG_LOGLEVEL, &ResponseData::logLevel},
    {P::TAG_SUPPORTPHONE, &ResponseData::supportPhone},
    {P::TAG_USERTEXT, &ResponseData::userText},
    {P::TAG_TESTDRIVERIPADDR, &ResponseData::testDriverIpAddr},
};

// Children of "loguploads".
const struct {
    unsigned int tagType;
    ResponseData::LogCategoryType category;
} LOG_CATEGORIES[] = {
    {P::TAG_APPLICATION, ResponseData::CATEGORY_APPLICATION},
    {P::TAG_MOVIELOG, ResponseData::CATEGORY_MOVIELOG},
    {P::TAG_CRASH, ResponseData::CATEGORY_CRASH},
    {P::TAG_PERFORMANCE, ResponseData::CATEGORY_PERFORMANCE},
};

// The value of attribute `name`, or null when the element has none.
const std::string* findAttribute(const std::map<std::string, std::string>& attributes,
                                 const char* name) {
    const auto found = attributes.find(name);
    return found == attributes.end() ? nullptr : &found->second;
}

} // namespace

ParentParser::ParentParser(Expat& expat, ResponseData& responseData, const TagConfigTable* table,
                           unsigned int count)
    : ExpatHandler(expat), tagTypes(sharedTagTypeIndex(config, CONFIG_COUNT, table, count)),
      responseData(&responseData), inResult(false), payloadEncrypted(true) {}

ParentParser::~ParentParser() = default;

bool ParentParser::parse(const std::string& text, const CipherContext& context) {
    reset();
    setContext();
    if (expat.parser)
        XML_SetElementHandler(expat.parser, startTag, endTag);
    // State left by an earlier rejected or failed document is dropped.
    contextStack.clear();
    dataText.clear();
    inResult = false;
    payloadEncrypted = true;
    PushContext(TAG_START);
    cipherContext = context;
    // Only a failure fills the record, so one of kind NONE is already clear.
    if (diagnostics.failure.kind != ParseFailure::NONE)
        diagnostics.failure = ParseFailure();
    takePayloadOpenFailure();
    if (ExpatHandler::parse(text))
        return true;
    // A rejection has recorded itself inside its callback; anything else is
    // expat giving up on the document.
    if (diagnostics.failure.kind == ParseFailure::NONE)
        recordMalformed(text);
    return false;
}

std::string ParentParser::getTagTypeName(unsigned int tagType) const {
    const auto found = tagTypes->nameOf.find(tagType);
    return found == tagTypes->nameOf.end() ? "<unknown>" : found->second;
}

unsigned int ParentParser::tagStrToTagType(const std::string& name) const {
    return tagTypes->find(name.data(), name.size());
}

void ParentParser::PushContext(unsigned int tagType) {
    contextStack.push_back(tagType);
}

void ParentParser::PopContext() {
    if (!contextStack.empty())
        contextStack.pop_back();
}

unsigned int ParentParser::GetContext() const {
    return contextStack.empty() ? static_cast<unsigned int>(TAG_START) : contextStack.back();
}

void ParentParser::onTagStartEvent(const std::string& name,
                                   const std::map<std::string, std::string>& attributes) {
    const unsigned int parent = GetContext();
    const unsigned int tag = tagTypes->idOf(name);
    if (!inResult && parent == TAG_RESULT && canParseResultSubTag(tag))
        inResult = true;
    if (!inResult) {
        onHeaderTagStart(parent, tag, name, attributes);
        return;
    }
    if (!onResultSubTagStartEvent(parent, tag, name, attributes)) {
        abort(name);
        return;
    }
    PushContext(tag);
}

void ParentParser::onHeaderTagStart(unsigned int parent, unsigned int tag, const std::string& name,
                                    const std::map<std::string, std::string>& attributes) {
    ResponseData& data = *responseData;
    switch (parent) {
    case TAG_START:
        if (tag == TAG_RESPONSE) {
            if (const std::string* version = findAttribute(attributes, "version"))
                data.protocolVersion = *version;
        }
        break;
    case TAG_RESPONSE:
        if (tag == TAG_RESULT) {
            const std::string* method = findAttribute(attributes, "method");
            if (!method) {
                reject(ParseFailure::MISSING_METHOD, name);
                return;
            }
            data.method = *method;
        }
        break;
    case TAG_RESPONSEHEADER:
        if (tag == TAG_PAYLOAD) {
            // Only the exact word "false" marks a plain (Base64) payload.
            const std::string* encrypted = findAttribute(attributes, "encrypted");
            payloadEncrypted = !encrypted || *encrypted != "false";
        }
        break;
    case TAG_LOGUPLOADS:
        for (const auto& row : LOG_CATEGORIES) {
            if (row.tagType == tag)
                data.logUploads.push_back(row.category);
        }
        break;
    default: break;
    }
    PushContext(tag);
}

void ParentParser::onDataEvent(const std::string& text) {
    if (inResult)
        onResultSubDataEvent(GetContext(), text);
    else
        dataText += text;
}

// Element names are nearly always names of the tables, and an end tag
// nearly always closes the open element by its name. Such names are handed
// on as the tables' own copies: the general road through ExpatHandler copies
// every name into a buffer first.

void XMLCALL ParentParser::startTag(void* userData, const char* name, const char** attributes) {
    ParentParser* const self = static_cast<ParentParser*>(static_cast<ExpatHandler*>(userData));
    const std::string* known = nullptr;
    if (!self->stopped && !attributes[0]) {
        const char* const bare = afterPrefix(name);
        known = self->tagTypes->known(bare, std::strlen(bare));
    }
    if (!known) {
        startElement(userData, name, attributes);
        return;
    }
    try {
        self->onTagStartEvent(*known, noAttributes());
    } catch (...) {
        self->stopWithPendingException();
    }
}

void XMLCALL ParentParser::endTag(void* userData, const char* name) {
    ParentParser* const self = static_cast<ParentParser*>(static_cast<ExpatHandler*>(userData));
    const std::string* const open = self->tagTypes->nameOfId(self->GetContext());
    if (self->stopped || !open || std::strcmp(afterPrefix(name), open->c_str()) != 0) {
        endElement(userData, name);
        return;
    }
    try {
        self->onTagEndEvent(*open);
    } catch (...) {
        self->stopWithPendingException();
    }
}

void ParentParser::onTagEndEvent(const std::string& name) {
    const unsigned int tag = GetContext();
    if (!tagTypes->hasId(name, tag)) {
        reject(ParseFailure::MISMATCHED_END, name);
        return;
    }
    try {
        if (!inResult) {
            PopContext();
            onHeaderTagEnd(tag);
            dataText.clear();
            return;
        }
        if (!onResultSubTagEndEvent(tag, name)) {
            abort(name);
            return;
        }
        PopContext();
        if (GetContext() == TAG_RESULT)
            inResult = false;
    } catch (const ZuvoExceptionNoCipherContext&) {
        // An encrypted payload and no cipher context: the document cannot be
        // read, which is a rejection rather than an error of the caller's.
        reject(ParseFailure::NO_CIPHER_CONTEXT, name);
    } catch (...) {
        if (takePayloadOpenFailure())
            recordPayload(name);
        throw;
    }
}

void ParentParser::onHeaderTagEnd(unsigned int tag) {
    ResponseData& data = *responseData;
    if (tag == TAG_SUCCESS) {
        // A success cancels any action the server asked for earlier.
        data.success = dataText == "true";
        if (data.success)
            data.actionId = 0;
        return;
    }
    if (tag == TAG_PAYLOAD) {
        const PayloadDecryptor payload(cipherContext, dataText, payloadEncrypted);
        data.serverTime = lexical_cast<unsigned int>(payload.getValueString("zuvo:servertime"));
        data.clientTime = lexical_cast<unsigned int>(payload.getValueString("zuvo:clienttime"));
        return;
    }
    for (const auto& row : INT_FIELDS) {
        if (row.tagType == tag) {
            data.*row.field = lexical_cast<int>(dataText);
            return;
        }
    }
    for (const auto& row : TEXT_FIELDS) {
        if (row.tagType == tag) {
            data.*row.field = dataText;
            return;
        }
    }
}

} // namespace zuvolib
} // namespace velmora
