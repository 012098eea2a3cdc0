#pragma once

#include <vector>

#include "Platform/PngDecoder.h"
#include "TFFramework/ControlBase/SkinContents.h"
#include "TFFramework/Renderer/Renderer.h"

// Every look list of a skin in one picture: a row for each, with its looks in their slots at the size of a
// control that has them.
class SkinSheet {
 public:
  SkinSheet(const TF::RCPtr<TF::LRenderer>& renderer, const TF::SkinContents& skin);

  // Throws runtime_error when there is nothing to draw on.
  Platform::Picture Draw();

 private:
  struct Row {
    TF::String mName;
    TF::RCPtr<TF::LLookList> mList;
    TF::SizeT<std::int32_t> mSize;
    TF::RCPtr<TF::LFont> mFont;
    std::int32_t mTop = 0;
  };

  void FindUser(Row& row, const TF::LControlDescriptor& control) const;
  void DrawRow(const Row& row);
  void DrawLook(const TF::ConstRCPtr<TF::LLookDescriptor>& descriptor, const Row& row,
                const TF::PointT<double>& place);
  std::int32_t LinesOf(const Row& row) const;
  std::int32_t SlotsPerLine(const Row& row) const;

  const TF::RCPtr<TF::LRenderer> mRenderer;
  std::vector<Row> mRows;
  std::int32_t mHeight = 0;
};
