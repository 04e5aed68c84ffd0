// The std::tr1 names the README promises to callers, whichever standard
// library is underneath: a name missing from the header fails to compile.
#include "zuvolib/Tr1Memory.h"

#include <gtest/gtest.h>

namespace {

struct Base : std::tr1::enable_shared_from_this<Base> {
    virtual ~Base() = default;
};
struct Derived : Base {};

TEST(Tr1Memory, CallerFacingNamesWork) {
    typedef std::default_delete<Base> Deleter;
    std::tr1::weak_ptr<Base> watch;
    {
        std::tr1::shared_ptr<Base> base(new Derived, Deleter());
        watch = base;
        EXPECT_NE(std::tr1::get_deleter<Deleter>(base), nullptr);
        EXPECT_EQ(base->shared_from_this(), base);
        EXPECT_TRUE(std::tr1::dynamic_pointer_cast<Derived>(base));
        EXPECT_EQ(std::tr1::static_pointer_cast<Derived>(base).get(), base.get());
        std::tr1::shared_ptr<const Base> constant = base;
        EXPECT_EQ(std::tr1::const_pointer_cast<Base>(constant), base);
        std::tr1::shared_ptr<Base> other;
        std::tr1::swap(base, other);
        EXPECT_EQ(watch.lock(), other);
    }
    EXPECT_THROW(std::tr1::shared_ptr<Base>{watch}, std::tr1::bad_weak_ptr);
}

} // namespace
