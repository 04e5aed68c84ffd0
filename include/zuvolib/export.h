// Symbol visibility for the public API. The library is built with hidden
// visibility; only declarations marked ZUVO_API are exported.
#ifndef ZUVOLIB_EXPORT_H
#define ZUVOLIB_EXPORT_H

#define ZUVO_API __attribute__((visibility("default")))

#endif
