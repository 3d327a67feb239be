#include "support/product_id.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

// One query's cached answer.
struct CachedAnswer {
  bool answer = false;
  bool initialised = false;
};

struct ProductIDCache {
  std::string value;
  bool set = false;
  bool initialised = false;
};

ProductIDCache g_productID;
CachedAnswer g_isKR9, g_isKR21, g_isKR2, g_isTundra, g_isPollux, g_isRelease;
std::string g_releaseFile = CProductID::kPolluxReleaseFile;

template <typename Compute>
bool Cached(CachedAnswer& cache, Compute compute) {
  if (!cache.initialised) {
    cache.answer = compute();
    cache.initialised = true;
  }
  return cache.answer;
}

bool ProductIs(const CProductID& product, const char* expected) {
  const char* id = product.getProductID();
  return id != nullptr && strcmp(id, expected) == 0;
}

}  // namespace

CProductID::~CProductID() = default;

const char* CProductID::getProductID() const {
  if (!g_productID.initialised) {
    const char* value = getenv("PRODUCT_ID");
    g_productID.set = value != nullptr;
    g_productID.value = value != nullptr ? value : "";
    g_productID.initialised = true;
  }
  return g_productID.set ? g_productID.value.c_str() : nullptr;
}

bool CProductID::isKR9() const {
  return Cached(g_isKR9, [this] { return ProductIs(*this, kKR9); });
}

bool CProductID::isKR21() const {
  return Cached(g_isKR21, [this] { return ProductIs(*this, kKR21); });
}

bool CProductID::isKR2() const {
  return Cached(g_isKR2, [this] { return ProductIs(*this, kKR2); });
}

bool CProductID::isTundra() const {
  return Cached(g_isTundra, [this] { return ProductIs(*this, kTundra) || isKR21() || isKR2(); });
}

bool CProductID::isPollux() const {
  return Cached(g_isPollux, [this] {
    if (getProductID() == nullptr) {
      fprintf(stderr, "%s: PRODUCT_ID environment variable not set", "isPollux");
      return false;
    }
    return ProductIs(*this, kPollux);
  });
}

bool CProductID::isRelease() const {
  return Cached(g_isRelease, [this] {
    const char* release = getenv("RELEASE_BUILD");
    if (release != nullptr && strcmp(release, "1") == 0) return true;
    if (isPollux() && access(g_releaseFile.c_str(), F_OK) == 0) {
      setenv("RELEASE_BUILD", "1", 1);
      return true;
    }
    return false;
  });
}

bool CProductID::canDoHeight(int) const { return false; }

void CProductID::ForgetCachedAnswers(const char* release_file) {
  g_productID = ProductIDCache();
  for (CachedAnswer* cache :
       {&g_isKR9, &g_isKR21, &g_isKR2, &g_isTundra, &g_isPollux, &g_isRelease})
    *cache = CachedAnswer();
  g_releaseFile = release_file;
}
