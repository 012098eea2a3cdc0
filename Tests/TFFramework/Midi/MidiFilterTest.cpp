#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Tests/TFFramework/Midi/MidiCommFixture.h"

namespace {

// Lets messages with one first byte through.
class FirstByteFilter : public TF::LIMidiFilter {
 public:
  explicit FirstByteFilter(char wanted) : mWanted(wanted) {}

  bool Accept(const char* data, unsigned length) override { return length > 0 && data[0] == mWanted; }
  TF::RCPtr<TF::LRefCountedObject> CreateCopy() const override {
    return TF::MakeRC<FirstByteFilter>(mWanted);
  }

  char mWanted;
};

class MidiFilter : public MidiCommFixture {
 protected:
  static TF::RCPtr<TF::LMidiCaptureNotificationData> Data(const std::string& bytes) {
    auto data = TF::MakeRC<TF::LMidiCaptureNotificationData>(nullptr, u"Tessel");
    data->Append(bytes.data(), static_cast<std::int32_t>(bytes.size()));
    return data;
  }

  void Distribute(const std::string& bytes) {
    EXPECT_EQ(mComm->DistributeCapturedData(Data(bytes)), TF::kSuccess);
  }
};

using Texts = std::vector<std::string>;

TEST_F(MidiFilter, NobodyRegisteredIsNothingDone) {
  EXPECT_EQ(mComm->DistributeCapturedData(Data("\xF8")), TF::kNothingDone);
}

TEST_F(MidiFilter, KeepsMessagesFromItsClientAlone) {
  const auto filtered = Listen();
  const auto free = Listen();
  EXPECT_EQ(mComm->SetMidiFilter(filtered, TF::MakeRC<FirstByteFilter>('a')), TF::kSuccess);
  Distribute("abc");
  Distribute("bcd");
  EXPECT_EQ(filtered->Texts(), Texts{"abc"});
  EXPECT_EQ(free->Texts(), (Texts{"abc", "bcd"}));
  EXPECT_EQ(mComm->SetMidiFilter(filtered, TF::MakeRC<FirstByteFilter>('b')), TF::kSuccess);
  Distribute("a");
  Distribute("b");
  EXPECT_EQ(filtered->Texts(), (Texts{"abc", "b"}));
  EXPECT_EQ(mComm->SetMidiFilter(filtered, nullptr), TF::kSuccess);
  Distribute("c");
  EXPECT_EQ(filtered->Texts(), (Texts{"abc", "b", "c"}));
  filtered->UnregisterAll();
  free->UnregisterAll();
}

TEST_F(MidiFilter, TheServiceKeepsAndGivesCopies) {
  const auto client = Listen();
  const auto filter = TF::MakeRC<FirstByteFilter>('a');
  EXPECT_FALSE(mComm->GetMidiFilter(client));
  mComm->SetMidiFilter(client, filter);
  filter->mWanted = 'b';
  const TF::RCPtr<FirstByteFilter> copy = mComm->GetMidiFilter(client);
  ASSERT_TRUE(copy);
  EXPECT_EQ(copy->mWanted, 'a');
  copy->mWanted = 'c';
  Distribute("a");
  EXPECT_EQ(client->Texts(), Texts{"a"});
  client->UnregisterAll();
}

TEST_F(MidiFilter, AHandlerMayChangeFiltersAndRegistrations) {
  TF::RCPtr<CaptureClient> last;
  TF::RCPtr<CaptureClient> first = Listen();
  TF::RCPtr<CaptureClient> middle = Listen();
  last = Listen([&] {
    mComm->SetMidiFilter(first, TF::MakeRC<FirstByteFilter>('x'));
    middle->UnregisterAll();
  });
  Distribute("a");  // The last registered is served first, so both changes hold at once.
  EXPECT_EQ(last->Texts(), Texts{"a"});
  EXPECT_EQ(middle->Texts(), Texts());
  EXPECT_EQ(first->Texts(), Texts());
  last->UnregisterAll();
  first->UnregisterAll();
}

TEST_F(MidiFilter, ANotificationWithoutDataPassesAnyFilter) {
  const auto client = Listen();
  mComm->SetMidiFilter(client, TF::MakeRC<FirstByteFilter>('x'));
  EXPECT_EQ(mComm->DistributeCapturedData(nullptr), TF::kSuccess);
  EXPECT_TRUE(client->WaitFor(1));
  client->UnregisterAll();
}

}  // namespace
