#include "TFFramework/Application/DiagnosticsOptions.h"

#include <gtest/gtest.h>

namespace {

using Route = TF::DiagnosticsOptions::Route;

TEST(DiagnosticsOptions, ReadsRoutePortAndHost) {
  struct Case {
    const char16_t* line;
    Route route;
    std::int32_t port;
    std::string host;
  };
  const Case cases[] = {
      {u"updater", Route::kDebugger, -1, ""},
      {u"updater -DEBUG_CONSOLE", Route::kConsole, -1, ""},
      {u"updater -debug_console -SILENT", Route::kConsole, -1, ""},
      {u"updater -DEBUG_CONSOLE:5000", Route::kDatagrams, 5000, ""},
      {u"updater -debug_console:5000 -SILENT", Route::kDatagrams, 5000, ""},
      {u"updater -DEBUG_CONSOLE:5000:localhost", Route::kDatagrams, 5000, "LOCALHOST"},
      {u"updater -DEBUG_CONSOLE:5000:10.0.0.1 x:y", Route::kDatagrams, 5000, "10.0.0.1"},
      {u"updater -DEBUG_CONSOLE:5000:", Route::kDatagrams, 5000, ""},
      {u"updater -DEBUG_CONSOLE:12", Route::kDatagrams, 12, ""},
      {u"updater -DEBUG_CONSOLE:5", Route::kDebugger, -1, ""},
      {u"updater -DEBUG_CONSOLE:", Route::kDebugger, -1, ""},
      {u"updater -DEBUG_CONSOLE: 5000", Route::kDebugger, -1, ""},
      {u"updater -DEBUG_CONSOLE:5:host", Route::kDebugger, -1, ""},
      {u"updater -DEBUG_CONSOLE:abc", Route::kDatagrams, 0, ""},
      {u"updater -DEBUG_CONSOLE:99999999999", Route::kDatagrams, 0, ""},
  };
  for (const Case& entry : cases) {
    SCOPED_TRACE(TF::ToUtf8(entry.line));
    const TF::DiagnosticsOptions options = TF::ParseDiagnosticsOptions(entry.line);
    EXPECT_EQ(options.mRoute, entry.route);
    EXPECT_EQ(options.mPort, entry.port);
    EXPECT_EQ(options.mHost, entry.host);
  }
}

}  // namespace
