#include "tools/data_importer/environment/run_context.h"

#if defined(_WIN32)
#include <windows.h>
#endif

#include <string>

#include "base/environment.h"
#include "base/file_util.h"
#include "base/path_service.h"
#include "base/utf_string_conversions.h"
#include "logging/logging.h"
#include "tools/data_importer/environment/ansi_code_page.h"
#include "tools/data_importer/run_record/importer_names.h"

namespace data_importer {

void SetLocalAppData(const base::FilePath& local_app_data, RunContext* context) {
  context->m_local_app_data = local_app_data;
  context->m_data_folder = base::FilePath();
  context->m_log_file = base::FilePath();
  if (local_app_data.empty())
    return;
  context->m_data_folder =
      base::ResolvePathCase(local_app_data.Append(importer_names::kDataFolderName));
  context->m_log_file =
      base::ResolvePathCase(context->m_data_folder.Append(importer_names::kLogFileName));
}

RunContext RunContextFromEnvironment() {
  RunContext context;
  base::FilePath local_app_data;
  // Unknown, the folders stay empty and the run finds nothing to do.
  (void)base::PathService::Get(base::DIR_LOCAL_APP_DATA, &local_app_data);
  SetLocalAppData(local_app_data, &context);
  context.m_roaming_app_data = base::GetRoamingAppDataFolder();

  for (const auto& [name, value] : base::EnvironmentVariables()) {
    if (name == L"USERPROFILE")
      context.m_user_profile = base::FilePath(value);
    else if (name == L"VANTU_REGISTRY_FILE")
      context.m_registry_file = base::FilePath(value);
    else
      context.m_variables[name] = value;
  }
  context.m_drives = base::DriveMapFromEnvironment();
#if defined(_WIN32)
  // The player's own machine: the system's ANSI code page.
  context.m_ansi_code_page = GetACP();
#else
  context.m_ansi_code_page = AnsiCodePageOfDrives(context.m_drives, std::nullopt);
#endif

  logging::LogSettings log = logging::LogSettingsFromEnvironment(context.m_log_file);
  context.m_log_level = log.min_level;
  context.m_log_to_stderr = log.to_stderr;
  return context;
}

}  // namespace data_importer
