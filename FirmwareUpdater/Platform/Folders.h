#pragma once

#include <string>
#include <string_view>

// The folders that the system sets aside for a program, as inner paths without a trailing
// `\`. None of them is created here, and each is empty when it cannot be told.
namespace Platform {

// The running program's file, links resolved, and the folder it stands in.
std::u16string ProgramPath();
std::u16string ProgramFolder();

// For all users; most users cannot write there.
std::u16string CommonFolder();
// For this user's settings: XDG_CONFIG_HOME, else .config in the home folder.
std::u16string LocalFolder();
// This user's documents as user-dirs.dirs tells, else the home folder.
std::u16string DocumentsFolder();

// The documents folder that the text of a user-dirs.dirs file names, as a native path; empty
// when it names none. home replaces "$HOME".
std::string DocumentsFolderIn(std::string_view userDirs, std::string_view home);

}  // namespace Platform
