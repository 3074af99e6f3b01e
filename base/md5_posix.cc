#include "base/md5.h"

#include <openssl/evp.h>

#include <cstdio>
#include <memory>

#include "base/file_util.h"

namespace base {

namespace {

class Digest {
 public:
  Digest() : m_ctx(EVP_MD_CTX_new()) {
    if (m_ctx)
      EVP_DigestInit_ex(m_ctx, EVP_md5(), nullptr);
  }
  ~Digest() { EVP_MD_CTX_free(m_ctx); }
  bool ok() const { return m_ctx != nullptr; }
  void Update(const void* data, size_t size) { EVP_DigestUpdate(m_ctx, data, size); }
  std::string FinishHex() {
    unsigned char bytes[EVP_MAX_MD_SIZE];
    unsigned int length = 0;
    EVP_DigestFinal_ex(m_ctx, bytes, &length);
    static const char kHex[] = "0123456789abcdef";
    std::string hex;
    for (unsigned int i = 0; i < length; ++i) {
      hex.push_back(kHex[bytes[i] >> 4]);
      hex.push_back(kHex[bytes[i] & 15]);
    }
    return hex;
  }

 private:
  EVP_MD_CTX* m_ctx;
};

}  // namespace

bool MD5OfFile(const FilePath& path, std::wstring* digest) {
  digest->clear();
  FILE* f = std::fopen(ResolvePathCase(path).AsUTF8Unsafe().c_str(), "rb");
  if (!f)
    return false;
  Digest md5;
  char buffer[1 << 16];
  size_t n;
  while (md5.ok() && (n = std::fread(buffer, 1, sizeof(buffer), f)) > 0)
    md5.Update(buffer, n);
  bool ok = md5.ok() && !std::ferror(f);
  std::fclose(f);
  if (!ok)
    return false;
  std::string hex = md5.FinishHex();
  digest->assign(hex.begin(), hex.end());
  return true;
}

std::string MD5String(const std::string& data) {
  Digest md5;
  if (!md5.ok())
    return std::string();
  md5.Update(data.data(), data.size());
  return md5.FinishHex();
}

}  // namespace base
