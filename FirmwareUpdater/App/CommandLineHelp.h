#pragma once

#include <iosfwd>
#include <span>
#include <string>

// Answers "--help" and "--version", whichever comes first among the arguments, on out. False,
// and no output, when neither is there.
bool AnswerHelpOrVersion(std::span<const std::string> arguments, std::ostream& out);
