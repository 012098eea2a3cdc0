#include "TFFramework/Application/MessageLabels.h"

namespace TF {

namespace {

constexpr std::uint32_t kPrimaryMask = 0x3FF;
constexpr std::uint32_t kChinese = 0x04;
constexpr std::uint32_t kGerman = 0x07;
constexpr std::uint32_t kSpanish = 0x0A;
constexpr std::uint32_t kFrench = 0x0C;
constexpr std::uint32_t kItalian = 0x10;
constexpr std::uint32_t kJapanese = 0x11;
constexpr std::uint32_t kKorean = 0x12;

bool IsTraditionalChinese(std::uint32_t language) {
  constexpr std::uint32_t kNeutral = 0x7C04;
  constexpr std::uint32_t kTaiwan = 0x0404;
  constexpr std::uint32_t kHongKong = 0x0C04;
  constexpr std::uint32_t kMacao = 0x1404;
  return language == kNeutral || language == kTaiwan || language == kHongKong || language == kMacao;
}

}  // namespace

Platform::MessageLabels MessageLabelsOf(std::uint32_t language) {
  switch (language & kPrimaryMask) {
    case kChinese:
      if (IsTraditionalChinese(language)) return {"確定", "取消", "是", "否"};
      return {"确定", "取消", "是", "否"};
    case kGerman:
      return {"OK", "Abbrechen", "Ja", "Nein"};
    case kSpanish:
      return {"Aceptar", "Cancelar", "Sí", "No"};
    case kFrench:
      return {"OK", "Annuler", "Oui", "Non"};
    case kItalian:
      return {"OK", "Annulla", "Sì", "No"};
    case kJapanese:
      return {"OK", "キャンセル", "はい", "いいえ"};
    case kKorean:
      return {"확인", "취소", "예", "아니요"};
    default:
      return {};
  }
}

}  // namespace TF
