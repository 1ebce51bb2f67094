// The records cross the interface by pointer, so their layout is binary
// contract. The 32-bit offsets and sizes are the ones 32-bit callers were
// written against (4-byte packing); 64-bit builds get the natural layout, the
// same one their type library describes.
#include <cstddef>

#include "TavrinEUI.h"

namespace {

#if defined(_WIN64)
constexpr std::size_t kBstr = 8;
constexpr std::size_t kFindDataSize = 48, kVersionsSize = 32, kProxySize = 48;
constexpr std::size_t kFindNameAt = 32, kProxyIpAt = 8, kProxyPortAt = 16, kProxyHttpAt = 24, kProxySocksAt = 26,
                      kProxyUserAt = 32;
#else
constexpr std::size_t kBstr = 4;
constexpr std::size_t kFindDataSize = 36, kVersionsSize = 28, kProxySize = 24;
constexpr std::size_t kFindNameAt = 28, kProxyIpAt = 4, kProxyPortAt = 8, kProxyHttpAt = 12, kProxySocksAt = 14,
                      kProxyUserAt = 16;
#endif

static_assert(sizeof(BSTR) == kBstr);

static_assert(sizeof(TavrinE_FILETIME) == 8);
static_assert(offsetof(TavrinE_FILETIME, dwLowDateTime) == 0);
static_assert(offsetof(TavrinE_FILETIME, dwHighDateTime) == 4);

static_assert(sizeof(TavrinE_WIN32_FIND_DATA) == kFindDataSize);
static_assert(offsetof(TavrinE_WIN32_FIND_DATA, nFileSize) == 0);
static_assert(offsetof(TavrinE_WIN32_FIND_DATA, nVersion) == 8);
static_assert(offsetof(TavrinE_WIN32_FIND_DATA, ftCreationTime) == 12);
static_assert(offsetof(TavrinE_WIN32_FIND_DATA, ftLastWriteTime) == 20);
static_assert(offsetof(TavrinE_WIN32_FIND_DATA, cFilename) == kFindNameAt);
static_assert(offsetof(TavrinE_WIN32_FIND_DATA, strUnimode) == kFindNameAt + kBstr);

// The first four fields of a listing entry, at the same offsets.
static_assert(sizeof(TavrinE_FILEVERSIONS) == kVersionsSize);
static_assert(offsetof(TavrinE_FILEVERSIONS, nFileSize) == 0);
static_assert(offsetof(TavrinE_FILEVERSIONS, nVersion) == 8);
static_assert(offsetof(TavrinE_FILEVERSIONS, ftCreationTime) == 12);
static_assert(offsetof(TavrinE_FILEVERSIONS, ftLastWriteTime) == 20);

static_assert(sizeof(Proxy_Settings) == kProxySize);
static_assert(offsetof(Proxy_Settings, Proxyenabled) == 0);
static_assert(offsetof(Proxy_Settings, IPText) == kProxyIpAt);
static_assert(offsetof(Proxy_Settings, ProxyPort) == kProxyPortAt);
static_assert(offsetof(Proxy_Settings, httpopt_Item) == kProxyHttpAt);
static_assert(offsetof(Proxy_Settings, socksopt_Item) == kProxySocksAt);
static_assert(offsetof(Proxy_Settings, sUsername) == kProxyUserAt);
static_assert(offsetof(Proxy_Settings, sPassword) == kProxyUserAt + kBstr);

}  // namespace
