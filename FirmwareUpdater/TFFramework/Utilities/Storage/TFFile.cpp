#include "TFFramework/Utilities/Storage/TFFile.h"

#include <fmt/format.h>

#include <algorithm>
#include <vector>

#include "Platform/Files.h"
#include "TFFramework/Utilities/Storage/DiagnosticsLog.h"
#include "TFFramework/Utilities/Storage/Resources.h"

namespace TF {

namespace {

constexpr std::uint32_t kLongestFile = 0x7FFFFFFF;  // Bytes; counts of the interface are signed.
constexpr std::u16string_view kSeparators = u"\\/";
constexpr std::u16string_view kRoot = u"\\";
constexpr std::u16string_view kNotInNames = u"\\/:*?\"<>|&;,^()";

// An open file, closed and if asked deleted with its last holder, so that copies of a File
// may end on different threads.
class LOpenFile : public LHolder<int> {
 public:
  LOpenFile(int descriptor, const String& path, bool deleteOnClose)
      : LHolder<int>(descriptor), mPath(path), mDelete(deleteOnClose) {}
  ~LOpenFile() override {
    Report("close", Platform::CloseFile(GetValue()));
    if (mDelete) Report("delete", Platform::RemoveFile(mPath));
  }

 private:
  // Whoever closes a file has no use for a result, but lost bytes must not go unseen.
  void Report(const char* action, const std::error_code& error) const {
    if (!error) return;
    try {
      LogRecord(fmt::format("file: cannot {} \"{}\": {}", action, ToUtf8(mPath), error.message()));
    } catch (const std::exception&) {
      LogRecord("file: cannot close or delete a file");
    }
  }

  String mPath;
  bool mDelete;
};

Platform::FileAccess AccessOf(std::uint32_t mode) {
  return {.write = (mode & kFileWrite) != 0,
          .create = (mode & kFileCreate) != 0,
          .exclusive = (mode & kFileExclusive) != 0};
}

bool IsSizeAllowed(int descriptor) {
  std::uint64_t size = 0;
  return !Platform::GetFileSize(descriptor, size) && size <= kLongestFile;
}

// A drive's root keeps its separator: without it the path would name something else.
bool IsDriveRoot(std::u16string_view path) {
  return path == kRoot || (path.size() == 3 && path[1] == u':' && path[2] == u'\\');
}

// What stands before a separator; before the leading one it is the root.
std::u16string_view FolderBefore(std::u16string_view path, std::size_t separator) {
  return separator == 0 ? path.substr(0, 1) : path.substr(0, separator);
}

char16_t FoldedAt(std::u16string_view text, std::size_t at) {
  return ToLowerCase(text[at]);
}

// Goes on behind the last "*" whenever the text stops to fit.
bool FitsPattern(std::u16string_view name, std::u16string_view pattern) {
  std::size_t n = 0, p = 0;
  std::size_t star = pattern.npos, starName = 0;
  while (n < name.size()) {
    if (p < pattern.size() && pattern[p] == u'*') {
      star = p++;
      starName = n;
    } else if (p < pattern.size() && (pattern[p] == u'?' || FoldedAt(pattern, p) == FoldedAt(name, n))) {
      ++p;
      ++n;
    } else if (star != pattern.npos) {
      p = star + 1;
      n = ++starName;
    } else {
      return false;
    }
  }
  return pattern.find_first_not_of(u'*', p) == pattern.npos;
}

}  // namespace

File::File(const String& folder, const String& name, std::uint32_t mode) {
  File::Open(folder, name, mode);
}

File::~File() {
  File::Close();
}

TFRESULT File::Open(const String& folder, const String& name, std::uint32_t mode) {
  if (mHandle) return kNothingDone;
  if (!name.IsEmpty()) {
    mName = name;
    mPath = folder + u"\\" + name;
  } else if (folder.IsEmpty()) {
    Throw<std::runtime_error>("invalid pathname", "TF::File::Open");
  } else {
    mName = String();
    mPath = folder;
  }
  mMode = mode;
  int descriptor = Platform::kNoFile;
  if (Platform::OpenFile(mPath, AccessOf(mMode), descriptor)) return kFailure;
  if (!IsSizeAllowed(descriptor)) {
    static_cast<void>(Platform::CloseFile(descriptor));  // Nothing was written that could get lost.
    return kFailure;
  }
  const bool deleteOnClose = (mMode & kFileDeleteOnClose) != 0;
  mHandle = RCPtr<LHolder<int>>(new LOpenFile(descriptor, mPath, deleteOnClose));
  return kSuccess;
}

TFRESULT File::Close() {
  if (mHandle && mHandle->GetRefCount() < 2) mHandle = nullptr;
  return kSuccess;
}

bool File::SeekTo(std::uint32_t position) const {
  if (position == kFileCurrentPosition) return true;
  std::int64_t reached = -1;
  const auto error = Platform::SeekFile(Descriptor(), position, Platform::SeekOrigin::kStart, reached);
  return !error && reached == position;
}

std::int32_t File::Read(void* buffer, std::uint32_t size, std::uint32_t position) {
  if (!SeekTo(position)) Throw<std::runtime_error>("lseek", "TF::File::Read");
  std::size_t count = 0;
  if (Platform::ReadFile(Descriptor(), buffer, std::min(size, kLongestFile), count)) {
    Throw<std::runtime_error>("read", "TF::File::Read");
  }
  return static_cast<std::int32_t>(count);
}

std::int32_t File::Write(const void* buffer, std::uint32_t size, std::uint32_t position) {
  if ((mMode & kFileWrite) == 0) Throw<std::runtime_error>("file is read only", "TF::File::Write");
  if (!SeekTo(position)) Throw<std::runtime_error>("lseek", "TF::File::Write");
  const std::uint32_t count = std::min(size, kLongestFile);
  if (Platform::WriteFile(Descriptor(), buffer, count)) Throw<std::runtime_error>("write", "TF::File::Write");
  return static_cast<std::int32_t>(count);
}

std::int64_t File::Seek(std::int64_t offset, std::uint32_t origin) {
  static constexpr Platform::SeekOrigin kOrigins[] = {
      Platform::SeekOrigin::kStart, Platform::SeekOrigin::kCurrent, Platform::SeekOrigin::kEnd};
  if (origin >= std::size(kOrigins)) return -1;
  std::int64_t position = -1;
  if (Platform::SeekFile(Descriptor(), offset, kOrigins[origin], position)) return -1;
  return position;
}

std::uint32_t File::GetLength() const {
  if (!mHandle) return 0;
  // A file that has grown past the limit since has no length that callers could count with.
  std::uint64_t size = 0;
  if (Platform::GetFileSize(Descriptor(), size) || size > kLongestFile) {
    Throw<std::runtime_error>("fstat", "TF::File::GetLength");
  }
  return static_cast<std::uint32_t>(size);
}

// What the program embeds is no file, though its mark is a legal beginning of a path.
bool File::FileExists(const String& path) {
  return !IsResourcePath(path) && Platform::GetPathKind(path) == Platform::PathKind::kFile;
}

bool File::FolderExists(const String& path) {
  std::u16string_view folder = path;
  if (folder.ends_with(u'\\') && !IsDriveRoot(folder)) folder.remove_suffix(1);
  return Platform::GetPathKind(folder) == Platform::PathKind::kFolder;
}

TFRESULT File::EnsureFolder(const String& path) {
  switch (Platform::GetPathKind(path)) {
    case Platform::PathKind::kFolder:
      return kNothingDone;
    case Platform::PathKind::kFile:
      return kFailure;
    case Platform::PathKind::kNothing:
      break;
  }
  return CreateFolderTree(path, false) ? kSuccess : kFailure;
}

bool File::CreateFolderTree(const String& path, bool lastIsFile) {
  const std::u16string_view whole = path;
  for (std::size_t at = whole.find_first_of(kSeparators, 1); at != whole.npos;
       at = whole.find_first_of(kSeparators, at + 1)) {
    // May be there already; whether it is shows at the end.
    static_cast<void>(Platform::CreateFolder(whole.substr(0, at)));
  }
  if (!lastIsFile) {
    static_cast<void>(Platform::CreateFolder(whole));
    return Platform::IsAccessible(whole);
  }
  const std::size_t last = whole.find_last_of(kSeparators);
  return last == whole.npos || Platform::IsAccessible(FolderBefore(whole, last));
}

String File::MakeValidName(const String& name) {
  String valid = name;
  valid.ReplaceAny(kNotInNames, u'_');
  return valid;
}

String File::GetFolderPart(const String& path) {
  const std::u16string_view whole = path;
  const std::size_t last = whole.rfind(u'\\');
  return last == whole.npos ? path : String(whole.substr(0, last));
}

String File::GetNamePart(const String& path) {
  const std::u16string_view whole = path;
  const std::size_t last = whole.find_last_of(kSeparators);
  return last == whole.npos || last + 1 == whole.size() ? path : String(whole.substr(last + 1));
}

String File::GetLongPath(const String& path) {
  return path;
}

TFRESULT File::ListFiles(const String& folder, const String& pattern, StringArray& out) {
  out.Clear();
  if (!FolderExists(folder)) return kNotImplemented;
  std::vector<Platform::FolderEntry> entries;
  const auto error = Platform::ListFolder(folder, entries);
  const bool everything = pattern == u"*.*";
  for (const auto& entry : entries) {
    if (entry.folder || !(everything || FitsPattern(entry.name, pattern))) continue;
    out.Add(folder + u"\\" + String(entry.name));
  }
  return error ? kFailure : out.GetCount();
}

}  // namespace TF
