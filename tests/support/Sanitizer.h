#pragma once

// Defines PENDRIX_ADDRESS_SANITIZER under AddressSanitizer, which replaces the allocator and slows the program down
// several times.

#if defined(__SANITIZE_ADDRESS__)
#define PENDRIX_ADDRESS_SANITIZER
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define PENDRIX_ADDRESS_SANITIZER
#endif
#endif
