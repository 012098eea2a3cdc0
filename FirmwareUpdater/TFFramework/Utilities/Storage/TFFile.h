#pragma once

#include <cstdint>

#include "TFFramework/ObjectBase/Wrappers.h"
#include "TFFramework/Utilities/Storage/StringArray.h"
#include "TFFramework/Utilities/Storage/StringT.h"

namespace TF {

// Mode bits of a File, combined with OR. Every open is at least for reading.
inline constexpr std::uint32_t kFileRead = 0x10000;
inline constexpr std::uint32_t kFileWrite = 0x20000;
inline constexpr std::uint32_t kFileExclusive = 0x40000;  // With kFileCreate: fails if the file exists.
inline constexpr std::uint32_t kFileCreate = 0x80000;
inline constexpr std::uint32_t kFileDeleteOnClose = 0x100000;

// Stands for the present position of a file.
inline constexpr std::uint32_t kFileCurrentPosition = 0xFFFFFFFF;

enum FileOrigin : std::uint32_t { kFileStart = 0, kFileCurrent = 1, kFileEnd = 2 };

// A file by name. Copies share the open file with its position; it closes with the last of
// them. Only regular files of at most 0x7FFFFFFF bytes are opened. Beside it stand the
// helpers for paths, whose separator is `\`.
//
// Read, Write and Seek are for an open file. They throw Exception<runtime_error> when the
// system fails; GetLength does so too.
//
// Threads: one object belongs to one thread at a time; copies may live on others.
class File {
 public:
  File() = default;
  File(const String& folder, const String& name, std::uint32_t mode);
  File(const File&) = default;
  File& operator=(const File&) = default;
  virtual ~File();

  // The path is folder, `\` and name, or folder alone when name is empty. kNothingDone when
  // open already, kFailure when the file cannot be opened. Throws for an empty path.
  virtual TFRESULT Open(const String& folder, const String& name, std::uint32_t mode);
  // Does nothing while a copy shares the file. Always kSuccess.
  virtual TFRESULT Close();
  // Returns the bytes read, fewer than size only at the end of the file.
  virtual std::int32_t Read(void* buffer, std::uint32_t size, std::uint32_t position = kFileCurrentPosition);
  // Returns size. Throws as well when the file was not opened for writing.
  virtual std::int32_t Write(const void* buffer, std::uint32_t size,
                             std::uint32_t position = kFileCurrentPosition);
  // Returns the new position from the start, -1 when there is no such position.
  virtual std::int64_t Seek(std::int64_t offset, std::uint32_t origin);
  // In bytes; 0 when not open.
  std::uint32_t GetLength() const;

  bool IsOpen() const { return static_cast<bool>(mHandle); }
  const String& GetName() const { return mName; }
  const String& GetPath() const { return mPath; }
  std::uint32_t GetMode() const { return mMode; }

  static bool FileExists(const String& path);
  static bool FolderExists(const String& path);
  // kNothingDone when the folder was there, kFailure for a file or when it cannot be made.
  static TFRESULT EnsureFolder(const String& path);
  // Makes each folder on the way, and the last one unless lastIsFile. True when the last
  // folder is there now.
  static bool CreateFolderTree(const String& path, bool lastIsFile);
  // Each character that a file name cannot hold everywhere becomes "_".
  static String MakeValidName(const String& name);
  // Before the last `\`; the whole path when there is none.
  static String GetFolderPart(const String& path);
  // Behind the last `\` or `/`; the whole path when there is none or when it ends in one.
  static String GetNamePart(const String& path);
  // The path itself: this system has no short forms.
  static String GetLongPath(const String& path);
  // Fills out with the paths of the files in folder whose names fit pattern ("*" any text, "?"
  // any character, "*.*" every name, in any case), in the order of the system. Returns their
  // count, kNotImplemented when there is no such folder, kFailure when it cannot be read.
  static TFRESULT ListFiles(const String& folder, const String& pattern, StringArray& out);

 private:
  std::int32_t Descriptor() const { return mHandle->GetValue(); }
  bool SeekTo(std::uint32_t position) const;

  RCPtr<LHolder<int>> mHandle;
  String mName;
  String mPath;
  std::uint32_t mMode = kFileRead;
};

}  // namespace TF
