#ifndef BASE_PROFILE_STRING_H_
#define BASE_PROFILE_STRING_H_

#include <cstdint>
#include <string>
#include <vector>

namespace base {

// The Windows profile functions on INI files. The Windows build makes the
// system's calls (the code page arguments then are the system's own); the
// other builds reproduce them:
//
// WritePrivateProfileStringW(section, key, value, file) loads the file,
// changes it and saves it within the call, as a separate process would, so
// that another process may read the file while we run:
//  - a missing file is created (UTF-8, our stand-in for the ANSI code page:
//    ASCII content is byte-identical); an existing 8-bit file that is not
//    valid UTF-8 is read and written in |ansi_code_page|, the code page of
//    the user whose file it is; a file starting with the UTF-16LE
//    byte-order mark stays UTF-16LE, one with the UTF-8 mark keeps it; a
//    file without a mark that IsTextUnicode takes for UTF-16LE is read and
//    written as UTF-16LE without a mark;
//  - section and key are found case-insensitively, with blanks around the
//    names ignored (for deletions too); the first section of that name is
//    used;
//  - an existing key gets the new value in place; a new key goes after the
//    last line of its section; a missing section is added at the end;
//  - an empty value writes "key=" and keeps the key; a null value deletes
//    the key; a null key deletes the section;
//  - writing the value a key already has leaves the file untouched;
//  - lines the call writes end in CR LF; every other line stays as it was.
// Returns false only when |section| is null or the file cannot be written.
[[nodiscard]] bool WritePrivateProfileStringW(const wchar_t* section,
                                              const wchar_t* key,
                                              const wchar_t* value,
                                              const wchar_t* file,
                                              uint32_t ansi_code_page);

// The matching reader: the value of |key| in |section| (trimmed, matching
// quotes removed), or |default_value| without trailing blanks when absent.
// The readers decode 8-bit files as the writer does.
std::wstring GetPrivateProfileStringW(const std::wstring& section,
                                      const std::wstring& key,
                                      const std::wstring& default_value,
                                      const std::wstring& file,
                                      uint32_t ansi_code_page);

// Names of the keys of |section| that have a value, in file order, and names
// of all sections, as the reader with a null key or section gives them.
std::vector<std::wstring> GetPrivateProfileKeys(const std::wstring& section,
                                                const std::wstring& file,
                                                uint32_t ansi_code_page);
std::vector<std::wstring> GetPrivateProfileSections(const std::wstring& file,
                                                    uint32_t ansi_code_page);

// What CreateUnicodeProfileFile did.
enum class ProfileFileCreation { kCreated, kExisted, kFailed };

// Creates |file| holding only the UTF-16LE byte-order mark when nothing
// exists under its name yet. The profile functions keep a file's encoding,
// so every character written to it later survives; a file they create
// themselves is 8-bit text in the ANSI code page, where a character the
// code page lacks becomes '?'. An existing file is left as it is.
[[nodiscard]] ProfileFileCreation CreateUnicodeProfileFile(const std::wstring& file);

}  // namespace base

#endif  // BASE_PROFILE_STRING_H_
