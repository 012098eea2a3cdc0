#include "TFFramework/ControlBase/LayoutAttributes.h"

#include "TFFramework/ControlBase/AttributeRules.h"

namespace TF {

namespace {

bool IsParentOrScreen(std::u16string_view text) {
  return text == u"Parent" || text == u"Screen";
}

bool IsClientOrWindow(std::u16string_view text) {
  return text == u"Client" || text == u"Active Window";
}

void StorePositionReference(AxisLayout& axis, std::u16string_view text) {
  LayoutPosition& position = axis.mPosition;
  position.mReference = IsParentOrScreen(text)   ? PositionReference::kParent
                        : IsClientOrWindow(text) ? PositionReference::kClient
                                                 : PositionReference::kNamed;
  if (position.mReference == PositionReference::kNamed) position.mName = text;
}

void StoreSizeReference(AxisLayout& axis, std::u16string_view text) {
  LayoutSize& size = axis.mSize;
  size.mReference = IsParentOrScreen(text)   ? SizeReference::kParent
                    : IsClientOrWindow(text) ? SizeReference::kClient
                    : text == u"Self"        ? SizeReference::kSelf
                                             : SizeReference::kNamed;
  if (size.mReference == SizeReference::kNamed) size.mName = text;
}

template <LayoutLimit AxisLayout::*Limit>
void StoreLimitReference(AxisLayout& axis, std::u16string_view text) {
  LayoutLimit& limit = axis.*Limit;
  limit.mIsNamed = text != u"Self";
  if (limit.mIsNamed) limit.mName = text;
}

template <LayoutAxis Of>
void StoreOverflow(LLayoutDescriptor& layout, std::u16string_view text) {
  TextOverflow& overflow = layout.Axis(Of).mTextOverflow;
  if (text == u"Clip") overflow = TextOverflow::kClip;
  if (text == u"Expand") overflow = TextOverflow::kExpand;
  if (text == u"Wrap" && Of == LayoutAxis::kX) overflow = TextOverflow::kWrap;
}

template <auto Member>
constexpr auto InLayout = StoreAt<LLayoutDescriptor, Member>;

constexpr AttributeRule<LLayoutDescriptor> kControlRules[] = {
    {u"ClipToParent", InLayout<&LLayoutDescriptor::ClipToParent>},
    {u"Z_Order", InLayout<&LLayoutDescriptor::Z_Order>},
    {u"LayoutOrder", InLayout<&LLayoutDescriptor::LayoutOrder>},
    {u"TextDecoration", InLayout<&LLayoutDescriptor::TextDecoration>},
    {u"TextOverflowXType", StoreOverflow<LayoutAxis::kX>},
    {u"TextOverflowYType", StoreOverflow<LayoutAxis::kY>},
};

constexpr AttributeRule<LLayoutDescriptor> kNoApplicationRules[] = {
    {u"IsVisible", InLayout<&LLayoutDescriptor::IsVisible>},
    {u"TabStop", InLayout<&LLayoutDescriptor::TabStop>},
};

// The same for both axes, but for the letter.
struct AxisRule {
  std::array<std::u16string_view, kAxisCount> mNames;
  void (*mStore)(AxisLayout& axis, std::u16string_view text);
};

template <auto... Path>
constexpr auto InAxis = StoreAt<AxisLayout, Path...>;

constexpr auto kPosition = &AxisLayout::mPosition;
constexpr auto kSize = &AxisLayout::mSize;
constexpr auto kLeastSize = &AxisLayout::mMinimum;
constexpr auto kMostSize = &AxisLayout::mMaximum;

constexpr AxisRule kAxisRules[] = {
    {{u"XIsDocked", u"YIsDocked"}, InAxis<kPosition, &LayoutPosition::mIsDocked>},
    {{u"XPlacementAnchor", u"YPlacementAnchor"}, InAxis<kPosition, &LayoutPosition::mAnchor>},
    {{u"XPositionToControl", u"YPositionToControl"}, StorePositionReference},
    {{u"XPositionRel", u"YPositionRel"}, InAxis<kPosition, &LayoutPosition::mRel>},
    {{u"XPositionAbs", u"YPositionAbs"}, InAxis<kPosition, &LayoutPosition::mAbs>},
    {{u"XSizeToControl", u"YSizeToControl"}, StoreSizeReference},
    {{u"XSizeRel", u"YSizeRel"}, InAxis<kSize, &LayoutSize::mRel>},
    {{u"XSizeAbs", u"YSizeAbs"}, InAxis<kSize, &LayoutSize::mAbs>},
    {{u"XMinSizeToControl", u"YMinSizeToControl"}, StoreLimitReference<kLeastSize>},
    {{u"XMinSizeRel", u"YMinSizeRel"}, InAxis<kLeastSize, &LayoutLimit::mRel>},
    {{u"XMinSizeAbs", u"YMinSizeAbs"}, InAxis<kLeastSize, &LayoutLimit::mAbs>},
    {{u"XMaxSizeToControl", u"YMaxSizeToControl"}, StoreLimitReference<kMostSize>},
    {{u"XMaxSizeRel", u"YMaxSizeRel"}, InAxis<kMostSize, &LayoutLimit::mRel>},
    {{u"XMaxSizeAbs", u"YMaxSizeAbs"}, InAxis<kMostSize, &LayoutLimit::mAbs>},
};

}  // namespace

void ReadLayout(const XmlAttributes& attributes, bool isApplication, LLayoutDescriptor& layout) {
  ReadPresent(attributes, kControlRules, layout);
  if (!isApplication) ReadPresent(attributes, kNoApplicationRules, layout);
  for (const AxisRule& rule : kAxisRules) {
    for (std::size_t axis = 0; axis < kAxisCount; ++axis) {
      if (const auto text = attributes.Find(rule.mNames[axis])) rule.mStore(layout.mAxes[axis], *text);
    }
  }
}

}  // namespace TF
