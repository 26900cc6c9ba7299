#pragma once

// PENDRIX_ADDRESS_SANITIZER is defined under AddressSanitizer, which takes the allocator for itself and makes
// everything take several times as long.

#if defined(__SANITIZE_ADDRESS__)
#define PENDRIX_ADDRESS_SANITIZER
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define PENDRIX_ADDRESS_SANITIZER
#endif
#endif
