#!/usr/bin/env bash
# Checks a Windows build of the importer: data_importer.dll exports exactly
# DataImporterMain, and it and vantu-import.exe import only DLLs that come
# with Windows (nothing must ship beside them).
# Usage: check-windows-dll.sh BUILD_DIR [OBJDUMP]
set -euo pipefail
build=$1
objdump=${2:-x86_64-w64-mingw32-objdump}
dll="$build/data_importer.dll"
exe="$build/vantu-import.exe"

# DLLs every supported Windows has; anything else would have to ship.
system_dlls="advapi32.dll bcrypt.dll dbghelp.dll kernel32.dll msvcrt.dll ole32.dll
             oleaut32.dll psapi.dll shell32.dll shlwapi.dll user32.dll version.dll ws2_32.dll"

fail=0
exports=$("$objdump" -p "$dll" | awk '/^\[Ordinal\/Name Pointer\] Table/ {t=1; next} t && /^\t\[/ {print $NF} t && /^$/ {t=0}')
if [ "$exports" != "DataImporterMain" ]; then
  echo "data_importer.dll exports: $(echo $exports) (expected only DataImporterMain)"
  fail=1
fi
for file in "$dll" "$exe"; do
  while read -r name; do
    lower=$(echo "$name" | tr '[:upper:]' '[:lower:]')
    case " $(echo $system_dlls) " in
      *" $lower "*) ;;
      *)
        # The host loads the importer's own DLL, which ships with it.
        if [ "$file" = "$exe" ] && [ "$lower" = "data_importer.dll" ]; then
          continue
        fi
        echo "$(basename "$file") imports $name, which is not a Windows system DLL"
        fail=1 ;;
    esac
  done < <("$objdump" -p "$file" | awk '/DLL Name:/ {print $3}')
done
if [ $fail -eq 0 ]; then
  echo "data_importer.dll exports only DataImporterMain; imports are Windows system DLLs"
fi
exit $fail
