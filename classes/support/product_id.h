// CProductID tells which product of the family the process runs on. The
// answers come from the environment ("PRODUCT_ID", "RELEASE_BUILD") and, on
// the Pollux platform, from the release marker file. Each query works its
// answer out on first use and caches it for the life of the process, so
// later changes of the environment are not seen.
//
// Ownership: the class has no data; any instance gives the same answers, and
// the cached answers are process-wide.
//
// Thread-safety: the caches are filled without a lock. Make the first call
// of each query before other threads start (the settings owner does so when
// it builds the catalogue); afterwards the queries only read.
#ifndef CLASSES_SUPPORT_PRODUCT_ID_H
#define CLASSES_SUPPORT_PRODUCT_ID_H

// The version of this software, shown by the unit's software version
// parameter. A build may set it with -DLIBCONFIG_SOFTWARE_VERSION="...".
#ifndef LIBCONFIG_SOFTWARE_VERSION
#define LIBCONFIG_SOFTWARE_VERSION "0.1.0"
#endif
constexpr const char kSoftwareVersion[] = LIBCONFIG_SOFTWARE_VERSION;

class CProductID {
 public:
  // The product strings compared with "PRODUCT_ID".
  static constexpr const char* kKR9 = "KR-9";
  static constexpr const char* kKR21 = "KR21";
  static constexpr const char* kKR2 = "KR2";  // the second sibling of the Tundra line
  static constexpr const char* kTundra = "TUNDRA";
  static constexpr const char* kPollux = "POLLUX";
  // The file whose presence marks a release build on the Pollux platform.
  static constexpr const char* kPolluxReleaseFile = "/etc/pollux_release";

  CProductID() = default;
  CProductID(const CProductID&) = delete;
  CProductID& operator=(const CProductID&) = delete;
  virtual ~CProductID();

  // The value of "PRODUCT_ID" as first read, or null when it was unset.
  const char* getProductID() const;
  bool isKR9() const;
  bool isKR21() const;
  bool isKR2() const;
  // "TUNDRA" itself, or either sibling model of its line.
  bool isTundra() const;
  // With "PRODUCT_ID" unset, writes "isPollux: PRODUCT_ID environment
  // variable not set" (no newline) once and answers false.
  bool isPollux() const;
  // "RELEASE_BUILD" is "1"; or, on Pollux, the release marker file exists,
  // in which case "RELEASE_BUILD" is set to "1" for the rest of the process.
  bool isRelease() const;
  // No product of this library's family can.
  bool canDoHeight(int height) const;

  // Test seam: forgets every cached answer, so the next queries read the
  // environment again, and makes isRelease look for `release_file`.
  static void ForgetCachedAnswers(const char* release_file = kPolluxReleaseFile);
};

#endif  // CLASSES_SUPPORT_PRODUCT_ID_H
