#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <sstream>

#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Tools/ComputerSide.h"
#include "Tools/Support/FileAccess.h"
#include "Tools/Vbin/Commands.h"
#include "Tools/Vbin/FlashMemory.h"
#include "Tools/Vbin/Image.h"

using namespace Vbin;
using ToolsTest::Bytes;
using Arguments = std::vector<std::string>;

namespace {

class VbinCommandsTest : public testing::Test {
 protected:
  int Run(const Arguments& arguments) {
    std::ostringstream out;
    std::ostringstream err;
    const int status = RunCommand(arguments, out, err);
    mOut = out.str();
    mErr = err.str();
    return status;
  }

  std::string Path(const char* name) const { return mFolder.Entry(name).string(); }

  // An image file of two regions, the second with two sections.
  std::string WriteImage(const char* name, std::size_t offset = 0, std::uint8_t change = 0) {
    Bytes image = BuildImage(ToolsTest::TwoRegionImage());
    image.at(offset) = static_cast<std::uint8_t>(image.at(offset) ^ change);
    Tools::ReplaceFile(Path(name), image);
    return Path(name);
  }

  TestSupport::TemporaryFolder mFolder;
  std::string mOut;
  std::string mErr;
};

}  // namespace

TEST_F(VbinCommandsTest, CreatesWhatTheOptionsDescribe) {
  const std::string data = mFolder.WriteFile("a,b=c.bin", "from a file").string();
  ASSERT_EQ(Run({"create",    Path("image"),
                 "--region",  "hw=0x10,attributes=0x04030201,parameter=9",
                 "--section", "address=0x100,file=" + data,
                 "--section", "fill=count:260,address=0x200",
                 "--region",  "hw=17,index=1,data-size=5,crc=0xABCDEF01",
                 "--section", "address=1,fill=0x5A:3",
                 "--section", "address=2,fill=ones:2",
                 "--section", "address=3,fill=random:1000:7",
                 "--section", "address=3,fill=random:1000:8",
                 "--section", "address=0xFFFFFFFF,fill=zero:1",
                 "--region",  "hw=3"}),
            kStatusDone)
      << mErr;
  const Bytes image = Tools::ReadFile(Path("image"), kMaxImageSize);
  const std::vector<Region> regions = ReadImage(image);
  ASSERT_EQ(regions.size(), 3U);
  const auto text = [&](std::size_t region, std::size_t section) {
    const auto& bytes = regions[region].mSections.at(section).mData;
    return std::string(bytes.begin(), bytes.end());
  };
  EXPECT_EQ(regions[0].mHardwareId, 0x10U);
  EXPECT_EQ(regions[0].mAttributes, (std::array<std::uint8_t, 4>{1, 2, 3, 4}));
  EXPECT_EQ(regions[0].mParameter, 9U);
  EXPECT_EQ(regions[0].mDataSize, 271U);
  EXPECT_EQ(regions[0].mRegionCrc, ComputeRegionCrc(regions[0]));
  EXPECT_EQ(text(0, 0), "from a file");
  EXPECT_EQ(regions[0].mSections[1].mAddress, 0x200U);
  EXPECT_EQ(regions[0].mSections[1].mData[258], 2);
  EXPECT_EQ(regions[1].mDataSize, 5U);
  EXPECT_EQ(regions[1].mRegionCrc, 0xABCDEF01);
  EXPECT_EQ(text(1, 0), "ZZZ");
  EXPECT_EQ(text(1, 1), "\xFF\xFF");
  EXPECT_NE(text(1, 2), text(1, 3));
  EXPECT_TRUE(regions[2].mSections.empty());
  EXPECT_EQ(Run({"verify", Path("image")}), kStatusDone);
  EXPECT_NE(mErr.find("warning: region 1: mRegionCrc is 0xABCDEF01"), std::string::npos) << mErr;
}

TEST_F(VbinCommandsTest, RefusesBadDescriptionsAndMakesNoFile) {
  const std::string fill = "address=0,fill=zero:1";
  const struct {
    Arguments mOptions;
    const char* mNamed;
  } cases[] = {
      {{}, "at least one region"},
      {{"--section", fill}, "a region before it"},
      {{"--region"}, "--region needs a value"},
      {{"--regions", "hw=1"}, "\"--regions\""},
      {{"--region", "index=auto"}, "hw=ID is missing"},
      {{"--region", "hw"}, "\"hw\" is not KEY=VALUE"},
      {{"--region", "hw=1,"}, "\"\" is not KEY=VALUE"},
      {{"--region", "hw=1,hw=2"}, "\"hw\" is given twice"},
      {{"--region", "hw=1,index=1"}, "index 1 is not the region's position 0"},
      {{"--region", "hw=1,color=2"}, "\"color\" is none of"},
      {{"--region", "hw=0x1FFFFFFFF"}, "hw: 0x1FFFFFFFF is above"},
      {{"--region", "hw=1", "--section", "fill=zero:1"}, "address=ADDRESS is missing"},
      {{"--region", "hw=1", "--section", "address=1"}, "is missing"},
      {{"--region", "hw=1", "--section", "address=1,file="}, "names no file"},
      {{"--region", "hw=1", "--section", "address=1,fill=zero:1,file=x"}, "exclude each other"},
      {{"--region", "hw=1", "--section", "address=1,fill=zero"}, "PATTERN:SIZE"},
      {{"--region", "hw=1", "--section", "address=1,fill=blue:1"}, "\"blue\" is none of"},
      {{"--region", "hw=1", "--section", "address=1,fill=0x100:1"}, "0x100 is above 255"},
      {{"--region", "hw=1", "--section", "address=1,fill=random:1:x"}, "fill seed"},
      {{"--region", "hw=1", "--section", "address=1,fill=zero:0xFFFFFFFF"}, "more than 2147483647 bytes"},
      {{"--region", "hw=1", "--section", "address=1,fill=zero:0x7FFFFFFF"}, "more than 2147483647 bytes"},
      {{"--region", "hw=1", "--section", "address=1,fill=zero:0x40000000", "--section",
        "address=1,fill=zero:0x40000000"},
       "more than 2147483647 bytes"},
      {{"--region", "hw=1", "--section", "address=0xFFFFFFFF,fill=zero:2"}, "pass the last address"},
      {{"--region", "hw=1", "--section", "address=1,file=" + Path("missing")}, "cannot open"},
      {{"--region", "hw=1", "--section", "address=1,file=" + mFolder.Path().string()},
       "is not a regular file"},
  };
  for (const auto& item : cases) {
    Arguments arguments{"create", Path("out")};
    arguments.insert(arguments.end(), item.mOptions.begin(), item.mOptions.end());
    EXPECT_EQ(Run(arguments), kStatusTrouble) << item.mNamed;
    EXPECT_NE(mErr.find(item.mNamed), std::string::npos) << item.mNamed << " in " << mErr;
  }
  EXPECT_TRUE(std::filesystem::is_empty(mFolder.Path()));
}

TEST_F(VbinCommandsTest, AFailedCreateLeavesTheOldFileAlone) {
  mFolder.WriteFile("out", "old");
  EXPECT_EQ(Run({"create", Path("out"), "--region", "hw=1", "--section", "address=1,file=" + Path("none")}),
            kStatusTrouble);
  EXPECT_EQ(TestSupport::ReadWholeFile(Path("out")), "old");
  EXPECT_EQ(Run({"create", Path("no/folder"), "--region", "hw=1"}), kStatusTrouble);
  EXPECT_NE(mErr.find("no/folder: cannot create"), std::string::npos) << mErr;
}

TEST_F(VbinCommandsTest, InfoListsRegionsAndSections) {
  ASSERT_EQ(Run({"info", WriteImage("image")}), kStatusDone);
  for (const char* part :
       {"2 regions", "region 1 at offset 2005, 4340 bytes", "hardware id 0x31534C54",
        "attributes 01 02 03 F4", "parameter 0x89ABCDEF", "data size 4240", "0x08010100", "4000"}) {
    EXPECT_NE(mOut.find(part), std::string::npos) << part << " in " << mOut;
  }
}

TEST_F(VbinCommandsTest, EveryCommandThatReadsRefusesAnInvalidImage) {
  const std::string image = WriteImage("image", 3000, 0x40);
  for (const Arguments& arguments :
       {Arguments{"info", image}, {"verify", image}, {"flash", image, Path("hex")}}) {
    EXPECT_EQ(Run(arguments), kStatusInvalid);
    EXPECT_EQ(mErr.find(image + ": region 1, section 1: section CRC: mCrc is 0x"), 0U) << mErr;
    EXPECT_EQ(mOut, "");
  }
  EXPECT_FALSE(std::filesystem::exists(Path("hex")));
  EXPECT_EQ(Run({"verify", WriteImage("good")}), kStatusDone);
  EXPECT_EQ(mOut, Path("good") + ": valid\n");
  EXPECT_EQ(mErr, "");
}

TEST_F(VbinCommandsTest, FlashWritesWhatADeviceWouldHold) {
  const std::string image = WriteImage("image");
  const Bytes bytes = BuildImage(ToolsTest::TwoRegionImage());
  const std::string all = FlashOf(ReadImage(bytes)).ToIntelHex();
  ASSERT_EQ(Run({"flash", image, Path("hex")}), kStatusDone);
  EXPECT_EQ(TestSupport::ReadWholeFile(Path("hex")), all);
  ASSERT_EQ(Run({"flash", image, Path("hex"), "--hardware-id", "5"}), kStatusDone);
  EXPECT_EQ(TestSupport::ReadWholeFile(Path("hex")), FlashMemory().ToIntelHex());
}

TEST_F(VbinCommandsTest, TellsTroubleFromInvalidImages) {
  ASSERT_EQ(mkfifo(Path("fifo").c_str(), 0600), 0);
  std::filesystem::resize_file(mFolder.WriteFile("huge", ""), 0x80000000);
  const struct {
    Arguments mArguments;
    const char* mNamed;
  } cases[] = {
      {{}, "a command is missing"},
      {{"frob"}, "\"frob\" is no command"},
      {{"create"}, "OUT is missing"},
      {{"create", "--region", "hw=1"}, "OUT comes before"},
      {{"info"}, "takes one IMAGE"},
      {{"verify", "a", "b"}, "takes one IMAGE"},
      {{"flash", "a"}, "takes IMAGE, OUT"},
      {{"flash", "a", "b", "--hardware-id", "x"}, "--hardware-id: \"x\""},
      {{"verify", Path("none")}, "cannot open"},
      {{"verify", Path("fifo")}, "is not a regular file"},
      {{"verify", Path("huge")}, "at most 2147483647 are taken"},
  };
  for (const auto& item : cases) {
    EXPECT_EQ(Run(item.mArguments), kStatusTrouble) << item.mNamed;
    EXPECT_NE(mErr.find(item.mNamed), std::string::npos) << item.mNamed << " in " << mErr;
  }
  EXPECT_EQ(Run({"--help"}), kStatusDone);
  EXPECT_NE(mOut.find("exit status"), std::string::npos);
  EXPECT_EQ(Run({"verify", mFolder.WriteFile("empty", "").string()}), kStatusInvalid);
  EXPECT_NE(mErr.find("empty file"), std::string::npos);
}
