// The std::tr1 smart pointers the API is written in, on any standard library.
//
// The API names its shared references `std::tr1::shared_ptr`,
// `std::tr1::weak_ptr` and so on. GNU's libstdc++ still ships them in
// <tr1/memory>, as types of their own. Other standard libraries (LLVM's
// libc++ among them) have no such header; there the names are declared here
// as the C++11 ones, so that code written against `std::tr1::shared_ptr`
// compiles unchanged on either.
//
// This header is the one place where the library adds names to namespace
// std. Every source and header includes it instead of <tr1/memory>.
#ifndef ZUVOLIB_TR1MEMORY_H
#define ZUVOLIB_TR1MEMORY_H

// <memory> brings in the library's configuration macros (__GLIBCXX__).
#include <memory>

#if defined(__GLIBCXX__) && __has_include(<tr1/memory>)
#include <tr1/memory>
#else
namespace std {
namespace tr1 {
using std::bad_weak_ptr;
using std::const_pointer_cast;
using std::dynamic_pointer_cast;
using std::enable_shared_from_this;
using std::get_deleter;
using std::shared_ptr;
using std::static_pointer_cast;
using std::swap;
using std::weak_ptr;
} // namespace tr1
} // namespace std
#endif

#endif
