#include "Platform/Desktop/FileQuestion.h"

#include <exception>
#include <optional>
#include <utility>

#include "Platform/Desktop/PortalDialog.h"
#include "Platform/Desktop/ZenityDialog.h"

namespace Platform {

FileQuestion::FileQuestion(const FileRequest& request, std::function<void()> onAnswer)
    : mRequest(request), mOnAnswer(std::move(onAnswer)) {
  if (mCancel.IsValid() && mThread.Start([this] { Ask(); })) return;
  mAnswer.mReason = "the system has no thread for the file dialog";
  mIsAnswered = true;
}

FileQuestion::~FileQuestion() {
  Cancel();
  mThread.Join();
}

FileChoice FileQuestion::TakeAnswer() {
  mThread.Join();
  return std::move(mAnswer);
}

void FileQuestion::Ask() {
  try {
    mAnswer = AskSomebody();
  } catch (const std::exception& exception) {
    mAnswer = {FileChoice::Outcome::kFailed, {}, exception.what()};
  }
  mIsAnswered = true;
  mOnAnswer();
}

FileChoice FileQuestion::AskSomebody() {
  std::string noPortal;
  std::optional<FileChoice> choice = AskPortal(mRequest, mCancel.GetDescriptor(), noPortal);
  if (choice) return *choice;
  std::string noZenity;
  choice = AskZenity(mRequest, mCancel.GetDescriptor(), noZenity);
  if (choice) return *choice;
  return {FileChoice::Outcome::kUnavailable, {}, "no file dialog: " + noPortal + "; " + noZenity};
}

}  // namespace Platform
