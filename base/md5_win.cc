#include "base/md5.h"

#include "base/windows_headers.h"
#include <bcrypt.h>

#include <vector>

#include "base/file_util.h"

namespace base {

namespace {

// MD5 through the system's cryptography provider (BCrypt).
class Digest {
 public:
  Digest() {
    if (!BCRYPT_SUCCESS(
            BCryptOpenAlgorithmProvider(&m_algorithm, BCRYPT_MD5_ALGORITHM, nullptr, 0))) {
      m_algorithm = nullptr;
      return;
    }
    if (!BCRYPT_SUCCESS(BCryptCreateHash(m_algorithm, &m_hash, nullptr, 0, nullptr, 0, 0)))
      m_hash = nullptr;
  }
  ~Digest() {
    if (m_hash)
      (void)BCryptDestroyHash(m_hash);  // nothing to do about a failure here
    if (m_algorithm)
      (void)BCryptCloseAlgorithmProvider(m_algorithm, 0);
  }
  Digest(const Digest&) = delete;
  Digest& operator=(const Digest&) = delete;

  bool ok() const { return m_hash != nullptr && m_ok; }
  void Update(const void* data, size_t size) {
    if (ok() && size > 0) {
      m_ok = BCRYPT_SUCCESS(BCryptHashData(m_hash, static_cast<PUCHAR>(const_cast<void*>(data)),
                                           static_cast<ULONG>(size), 0));
    }
  }
  std::string FinishHex() {
    unsigned char bytes[16];
    if (!ok() || !BCRYPT_SUCCESS(BCryptFinishHash(m_hash, bytes, sizeof(bytes), 0)))
      return std::string();
    static const char kHex[] = "0123456789abcdef";
    std::string hex;
    for (unsigned char b : bytes) {
      hex.push_back(kHex[b >> 4]);
      hex.push_back(kHex[b & 15]);
    }
    return hex;
  }

 private:
  BCRYPT_ALG_HANDLE m_algorithm = nullptr;
  BCRYPT_HASH_HANDLE m_hash = nullptr;
  bool m_ok = true;
};

}  // namespace

bool MD5OfFile(const FilePath& path, std::wstring* digest) {
  digest->clear();
  HANDLE file = CreateFileW(ResolvePathCase(path).value().c_str(), GENERIC_READ,
                            FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                            OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
  if (file == INVALID_HANDLE_VALUE)
    return false;
  Digest md5;
  std::vector<char> buffer(1 << 16);
  bool ok = md5.ok();
  while (ok) {
    DWORD n = 0;
    if (!ReadFile(file, buffer.data(), static_cast<DWORD>(buffer.size()), &n, nullptr)) {
      ok = false;
      break;
    }
    if (n == 0)
      break;
    md5.Update(buffer.data(), n);
    ok = md5.ok();
  }
  CloseHandle(file);
  if (!ok)
    return false;
  std::string hex = md5.FinishHex();
  if (hex.empty())
    return false;
  digest->assign(hex.begin(), hex.end());
  return true;
}

std::string MD5String(const std::string& data) {
  Digest md5;
  md5.Update(data.data(), data.size());
  return md5.FinishHex();
}

}  // namespace base
