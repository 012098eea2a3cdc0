#include "Tests/Support/Portal/StandInPortal.h"

#include <algorithm>
#include <future>
#include <stdexcept>
#include <utility>

namespace TestSupport {

namespace {

constexpr const char* kName = "org.freedesktop.portal.Desktop";
constexpr const char* kPath = "/org/freedesktop/portal/desktop";
constexpr const char* kInterface = R"(<node><interface name='org.freedesktop.portal.FileChooser'>
  <method name='OpenFile'>
    <arg type='s' name='parent_window' direction='in'/>
    <arg type='s' name='title' direction='in'/>
    <arg type='a{sv}' name='options' direction='in'/>
    <arg type='o' name='handle' direction='out'/>
  </method>
</interface></node>)";

void Check(bool done, const char* what) {
  if (!done) throw std::runtime_error(std::string("stand-in portal: ") + what);
}

std::string RequestPath(GVariant* parameters, std::string asker) {
  GVariant* const options = g_variant_get_child_value(parameters, 2);
  const char* token = "none";
  g_variant_lookup(options, "handle_token", "&s", &token);
  asker.erase(0, 1);
  std::replace(asker.begin(), asker.end(), '.', '_');
  std::string path = std::string(kPath) + "/request/" + asker + "/" + token;
  g_variant_unref(options);
  return path;
}

}  // namespace

StandInPortal::StandInPortal(const std::string& address, Answer answer)
    : mAddress(address), mAnswer(std::move(answer)) {
  std::promise<void> ready;
  mThread = std::thread([&] {
    g_main_context_push_thread_default(mContext);
    try {
      Connect();
      ready.set_value();
    } catch (...) {
      ready.set_exception(std::current_exception());
      return;
    }
    g_main_loop_run(mLoop);
    g_dbus_connection_close_sync(mConnection, nullptr, nullptr);
    g_object_unref(mConnection);
    g_main_context_pop_thread_default(mContext);
  });
  try {
    ready.get_future().get();
  } catch (...) {
    mThread.join();
    throw;
  }
}

StandInPortal::~StandInPortal() {
  g_main_loop_quit(mLoop);
  mThread.join();
  g_main_loop_unref(mLoop);
  g_main_context_unref(mContext);
}

std::string StandInPortal::GetQuestion() {
  const std::lock_guard lock(mMutex);
  return mQuestion;
}

void StandInPortal::Connect() {
  mConnection = g_dbus_connection_new_for_address_sync(
      mAddress.c_str(),
      static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                        G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
      nullptr, nullptr, nullptr);
  Check(mConnection != nullptr, "no connection");
  GDBusNodeInfo* const node = g_dbus_node_info_new_for_xml(kInterface, nullptr);
  static constexpr GDBusInterfaceVTable kTable{HandleCall, nullptr, nullptr, {}};
  const std::uint32_t object = g_dbus_connection_register_object(mConnection, kPath, node->interfaces[0],
                                                                 &kTable, this, nullptr, nullptr);
  g_dbus_node_info_unref(node);
  Check(object != 0, "no object");
  GVariant* const reply = g_dbus_connection_call_sync(
      mConnection, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "RequestName",
      g_variant_new("(su)", kName, 0), G_VARIANT_TYPE("(u)"), G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr);
  std::uint32_t status = 0;
  if (reply) g_variant_get(reply, "(u)", &status);
  if (reply) g_variant_unref(reply);
  Check(status == 1, "no name");
}

void StandInPortal::Answering(GDBusMethodInvocation* invocation, GVariant* parameters) {
  {
    char* const printed = g_variant_print(parameters, FALSE);
    const std::lock_guard lock(mMutex);
    mQuestion = printed;
    g_free(printed);
  }
  const std::string asker = g_dbus_method_invocation_get_sender(invocation);
  Watch(asker.c_str());
  const Conduct conduct = mAnswer.mConduct;
  if (conduct == Conduct::kRefuses) {
    g_dbus_method_invocation_return_dbus_error(invocation, "org.freedesktop.portal.Error.Failed",
                                               "No dialog");
    return;
  }
  if (conduct == Conduct::kTakesNothing) {
    g_object_unref(invocation);
    return;
  }
  const std::string path = RequestPath(parameters, asker);
  if (conduct == Conduct::kAnswersFirst) Respond(path, asker.c_str());
  g_dbus_method_invocation_return_value(invocation, g_variant_new("(o)", path.c_str()));
  g_dbus_connection_flush_sync(mConnection, nullptr, nullptr);
  if (conduct == Conduct::kDies)
    g_main_loop_quit(mLoop);
  else if (conduct != Conduct::kKeepsSilent && conduct != Conduct::kAnswersFirst)
    Respond(path, asker.c_str());
}

void StandInPortal::Respond(const std::string& path, const char* asker) {
  GVariantBuilder results;
  g_variant_builder_init(&results, G_VARIANT_TYPE_VARDICT);
  GVariantBuilder uris;
  g_variant_builder_init(&uris, G_VARIANT_TYPE_STRING_ARRAY);
  for (const std::string& uri : mAnswer.mUris) g_variant_builder_add(&uris, "s", uri.c_str());
  g_variant_builder_add(&results, "{sv}", "uris", g_variant_builder_end(&uris));
  GVariant* const answer = g_variant_new("(ua{sv})", mAnswer.mResponse, &results);
  g_variant_ref_sink(answer);
  const bool isWrong = mAnswer.mConduct == Conduct::kAnswersWrongly;
  g_dbus_connection_emit_signal(mConnection, asker, path.c_str(), "org.freedesktop.portal.Request",
                                "Response", isWrong ? g_variant_new("(s)", "yes") : answer, nullptr);
  g_variant_unref(answer);
}

void StandInPortal::Watch(const char* asker) {
  g_dbus_connection_signal_subscribe(mConnection, "org.freedesktop.DBus", "org.freedesktop.DBus",
                                     "NameOwnerChanged", "/org/freedesktop/DBus", asker,
                                     G_DBUS_SIGNAL_FLAGS_NONE, HandleOwner, this, nullptr);
}

void StandInPortal::HandleCall(GDBusConnection*, const char*, const char*, const char*, const char*,
                               GVariant* parameters, GDBusMethodInvocation* invocation, void* data) {
  static_cast<StandInPortal*>(data)->Answering(invocation, parameters);
}

void StandInPortal::HandleOwner(GDBusConnection*, const char*, const char*, const char*, const char*,
                                GVariant*, void* data) {
  static_cast<StandInPortal*>(data)->mIsAskerGone = true;
}

}  // namespace TestSupport
