#pragma once

#include <optional>
#include <string>

namespace vireon::platform {

/// A file's path in the form in which the system opens files: UTF-16 on Windows, bytes elsewhere.
#ifdef _WIN32
using Path = std::wstring;
#else
using Path = std::string;
#endif

/// Path from the narrow encoding in which hosts name files.
Path FromNarrow(const char* text);

/// Value of an environment variable as it stands now, or none when it is not set.
std::optional<Path> EnvironmentPath(const char* name);

/// The path before its last separator (a backslash on Windows, a slash elsewhere), or none when
/// there is no separator.
std::optional<Path> ParentFolder(const Path& path);

/// `folder`, a separator, `name`; nothing is trimmed.
Path Join(const Path& folder, const char* name);

}  // namespace vireon::platform
