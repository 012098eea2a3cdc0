#include "Platform/Desktop/PortalDialog.h"

#include <gio/gio.h>
#include <glib-unix.h>

#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "Platform/Desktop/CleanUtf8.h"
#include "Platform/Desktop/FilePattern.h"
#include "Platform/Desktop/Handles.h"
#include "Platform/Desktop/SessionBus.h"
#include "Platform/NativePath.h"

namespace Platform {

namespace {

constexpr const char* kPortalName = "org.freedesktop.portal.Desktop";
constexpr const char* kPortalPath = "/org/freedesktop/portal/desktop";
constexpr const char* kChooserInterface = "org.freedesktop.portal.FileChooser";
constexpr const char* kRequestInterface = "org.freedesktop.portal.Request";
constexpr std::uint32_t kAnswered = 0;
constexpr std::uint32_t kCancelledByUser = 1;
constexpr std::uint32_t kGlobPattern = 0;
constexpr int kUsualTimeout = -1;

using ErrorHandle = std::unique_ptr<GError, Releaser<g_error_free>>;
using VariantHandle = std::unique_ptr<GVariant, Releaser<g_variant_unref>>;
using TextHandle = std::unique_ptr<char, Releaser<g_free>>;

// The libraries' events come to this thread as long as this object lives, and not to the program's own.
class OwnContext {
 public:
  OwnContext() : mContext(g_main_context_new()) { g_main_context_push_thread_default(mContext.get()); }
  OwnContext(const OwnContext&) = delete;
  OwnContext& operator=(const OwnContext&) = delete;
  ~OwnContext() { g_main_context_pop_thread_default(mContext.get()); }

  GMainContext* Get() const { return mContext.get(); }
  void Step() { g_main_context_iteration(mContext.get(), TRUE); }

 private:
  const std::unique_ptr<GMainContext, Releaser<g_main_context_unref>> mContext;
};

// One dialog, on a connection of its own: when that closes, the portal takes the dialog away.
class PortalDialog {
 public:
  PortalDialog(const FileRequest& request, int cancelDescriptor);
  PortalDialog(const PortalDialog&) = delete;
  PortalDialog& operator=(const PortalDialog&) = delete;
  ~PortalDialog();

  std::optional<FileChoice> Ask(const std::string& address, std::string& why);

 private:
  void Connect(const std::string& address);
  void Listen();
  void Subscribe(const char* sender, const char* interface, const char* member, const char* path,
                 const char* argument, GDBusSignalCallback callback);
  void Open();
  GVariant* MakeOptions() const;
  GVariant* MakeFilters() const;
  void OnResponse(GVariant* parameters);
  void TakeFiles(GVariant* results);
  void Fail(const std::string& reason);
  // Also with the question on its way: what it has opened is not known.
  void LoseBus() { Fail("the session bus has gone before the portal answered"); }
  void End(FileChoice choice) {
    if (!mChoice) mChoice = std::move(choice);
  }

  static PortalDialog& Self(void* data) { return *static_cast<PortalDialog*>(data); }
  static gboolean HandleCancel(int, GIOCondition, void* data);
  static void HandleConnected(GObject*, GAsyncResult* result, void* data);
  static void HandleOpened(GObject*, GAsyncResult* result, void* data);
  static void HandleResponse(GDBusConnection*, const char*, const char*, const char*, const char*,
                             GVariant* parameters, void* data);
  static void HandleOwner(GDBusConnection*, const char*, const char*, const char*, const char*,
                          GVariant* parameters, void* data);
  static void HandleClosed(GDBusConnection*, gboolean, GError*, void* data);

  const FileRequest& mRequest;
  OwnContext mContext;
  const GObjectHandle<GCancellable> mCancellable{g_cancellable_new()};
  const std::unique_ptr<GSource, Releaser<g_source_unref>> mCancelSource;
  GObjectHandle<GDBusConnection> mConnection;
  std::vector<std::uint32_t> mSubscriptions;
  std::string mToken;
  bool mIsCallPending = false;
  bool mIsOpen = false;
  std::string mError;  // Why no dialog has come.
  std::optional<FileChoice> mChoice;
};

PortalDialog::PortalDialog(const FileRequest& request, int cancelDescriptor)
    : mRequest(request), mCancelSource(g_unix_fd_source_new(cancelDescriptor, G_IO_IN)) {
  g_source_set_callback(mCancelSource.get(), G_SOURCE_FUNC(HandleCancel), this, nullptr);
  g_source_attach(mCancelSource.get(), mContext.Get());
}

// A call under way still names this object.
PortalDialog::~PortalDialog() {
  g_cancellable_cancel(mCancellable.get());
  while (mIsCallPending) mContext.Step();
  g_source_destroy(mCancelSource.get());
  if (!mConnection) return;
  for (const std::uint32_t subscription : mSubscriptions)
    g_dbus_connection_signal_unsubscribe(mConnection.get(), subscription);
  g_signal_handlers_disconnect_by_data(mConnection.get(), this);
  g_dbus_connection_close_sync(mConnection.get(), nullptr, nullptr);
}

std::optional<FileChoice> PortalDialog::Ask(const std::string& address, std::string& why) {
  Connect(address);
  while (mIsCallPending) mContext.Step();
  if (mConnection && !mChoice) {
    Listen();
    Open();
    // An answer may come before the news that the question has been taken.
    while (!mChoice && (mIsCallPending || mIsOpen)) mContext.Step();
  }
  if (!mChoice) why = "no portal answers (" + mError + ")";
  return mChoice;
}

void PortalDialog::Connect(const std::string& address) {
  constexpr auto kFlags = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                            G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
  mIsCallPending = true;
  g_dbus_connection_new_for_address(address.c_str(), kFlags, nullptr, mCancellable.get(), HandleConnected,
                                    this);
}

// Before the call, as the answer may be faster than its result. The path follows from the connection's
// name and a word of ours.
void PortalDialog::Listen() {
  g_signal_connect(mConnection.get(), "closed", G_CALLBACK(HandleClosed), this);
  Subscribe("org.freedesktop.DBus", "org.freedesktop.DBus", "NameOwnerChanged", "/org/freedesktop/DBus",
            kPortalName, HandleOwner);
  mToken = "tessel" + std::to_string(g_random_int());
  std::string sender = g_dbus_connection_get_unique_name(mConnection.get()) + 1;
  for (char& character : sender)
    if (character == '.') character = '_';
  const std::string path = std::string(kPortalPath) + "/request/" + sender + "/" + mToken;
  Subscribe(kPortalName, kRequestInterface, "Response", path.c_str(), nullptr, HandleResponse);
}

void PortalDialog::Subscribe(const char* sender, const char* interface, const char* member, const char* path,
                             const char* argument, GDBusSignalCallback callback) {
  mSubscriptions.push_back(g_dbus_connection_signal_subscribe(mConnection.get(), sender, interface, member,
                                                              path, argument, G_DBUS_SIGNAL_FLAGS_NONE,
                                                              callback, this, nullptr));
}

void PortalDialog::Open() {
  TextHandle parent(mRequest.mParentHandle == 0
                        ? g_strdup("")
                        : g_strdup_printf("x11:%" G_GINTPTR_MODIFIER "x", mRequest.mParentHandle));
  mIsCallPending = true;
  g_dbus_connection_call(
      mConnection.get(), kPortalName, kPortalPath, kChooserInterface, "OpenFile",
      g_variant_new("(ss@a{sv})", parent.get(), CleanUtf8(mRequest.mTitle).c_str(), MakeOptions()),
      G_VARIANT_TYPE("(o)"), G_DBUS_CALL_FLAGS_NONE, kUsualTimeout, mCancellable.get(), HandleOpened, this);
}

GVariant* PortalDialog::MakeOptions() const {
  GVariantBuilder options;
  g_variant_builder_init(&options, G_VARIANT_TYPE_VARDICT);
  const auto add = [&options](const char* key, GVariant* value) {
    g_variant_builder_add(&options, "{sv}", key, value);
  };
  add("handle_token", g_variant_new_string(mToken.c_str()));
  add("modal", g_variant_new_boolean(TRUE));
  add("multiple", g_variant_new_boolean(mRequest.mMultiple ? TRUE : FALSE));
  if (!mRequest.mFolder.empty())
    add("current_folder", g_variant_new_bytestring(ToNativePath(mRequest.mFolder).c_str()));
  if (!mRequest.mFilters.empty()) add("filters", MakeFilters());
  return g_variant_builder_end(&options);
}

GVariant* PortalDialog::MakeFilters() const {
  GVariantBuilder filters;
  g_variant_builder_init(&filters, G_VARIANT_TYPE("a(sa(us))"));
  for (const FileFilter& filter : mRequest.mFilters) {
    g_variant_builder_open(&filters, G_VARIANT_TYPE("(sa(us))"));
    g_variant_builder_add(&filters, "s", CleanUtf8(filter.mName).c_str());
    g_variant_builder_open(&filters, G_VARIANT_TYPE("a(us)"));
    for (const std::u16string& pattern : filter.mPatterns)
      g_variant_builder_add(&filters, "(us)", kGlobPattern, AnyCasePattern(pattern).c_str());
    g_variant_builder_close(&filters);
    g_variant_builder_close(&filters);
  }
  return g_variant_builder_end(&filters);
}

void PortalDialog::Fail(const std::string& reason) {
  End({FileChoice::Outcome::kFailed, {}, reason});
}

void PortalDialog::OnResponse(GVariant* parameters) {
  if (!g_variant_is_of_type(parameters, G_VARIANT_TYPE("(ua{sv})")))
    return Fail("the portal's answer has the wrong form");
  std::uint32_t response = 0;
  GVariant* results = nullptr;
  g_variant_get(parameters, "(u@a{sv})", &response, &results);
  const VariantHandle owned(results);
  if (response == kAnswered) return TakeFiles(results);
  if (response == kCancelledByUser) return End({FileChoice::Outcome::kCancelled, {}, {}});
  Fail("the portal has ended the dialog, response " + std::to_string(response));
}

// A part of what was chosen is nothing to go on with.
void PortalDialog::TakeFiles(GVariant* results) {
  const VariantHandle list(g_variant_lookup_value(results, "uris", G_VARIANT_TYPE_STRING_ARRAY));
  FileChoice choice{FileChoice::Outcome::kChosen, {}, {}};
  const std::size_t count = list ? g_variant_n_children(list.get()) : 0;
  for (std::size_t index = 0; index < count; ++index) {
    const VariantHandle item(g_variant_get_child_value(list.get(), index));
    const char* const uri = g_variant_get_string(item.get(), nullptr);
    char* host = nullptr;
    const TextHandle path(g_filename_from_uri(uri, &host, nullptr));
    const TextHandle ownedHost(host);
    if (!path || (host && std::string_view(host) != "localhost"))
      return Fail(std::string("no local file: ") + uri);
    choice.mPaths.push_back(FromNativePath(path.get()));
  }
  if (choice.mPaths.empty()) return Fail("the portal's answer names no file");
  End(std::move(choice));
}

gboolean PortalDialog::HandleCancel(int, GIOCondition, void* data) {
  Self(data).End({FileChoice::Outcome::kCancelled, {}, {}});
  g_cancellable_cancel(Self(data).mCancellable.get());
  return G_SOURCE_REMOVE;
}

void PortalDialog::HandleConnected(GObject*, GAsyncResult* result, void* data) {
  GError* error = nullptr;
  Self(data).mIsCallPending = false;
  Self(data).mConnection.reset(g_dbus_connection_new_for_address_finish(result, &error));
  const ErrorHandle owned(error);
  if (error) Self(data).mError = error->message;
}

void PortalDialog::HandleOpened(GObject* connection, GAsyncResult* result, void* data) {
  GError* error = nullptr;
  const VariantHandle reply(g_dbus_connection_call_finish(G_DBUS_CONNECTION(connection), result, &error));
  const ErrorHandle owned(error);
  Self(data).mIsCallPending = false;
  Self(data).mIsOpen = reply != nullptr;
  if (error) Self(data).mError = error->message;
  if (g_error_matches(error, G_IO_ERROR, G_IO_ERROR_CLOSED)) Self(data).LoseBus();
}

void PortalDialog::HandleResponse(GDBusConnection*, const char*, const char*, const char*, const char*,
                                  GVariant* parameters, void* data) {
  Self(data).OnResponse(parameters);
}

void PortalDialog::HandleOwner(GDBusConnection*, const char*, const char*, const char*, const char*,
                               GVariant* parameters, void* data) {
  const char* owner = nullptr;
  if (!g_variant_is_of_type(parameters, G_VARIANT_TYPE("(sss)"))) return;
  g_variant_get(parameters, "(&s&s&s)", nullptr, nullptr, &owner);
  if (*owner == '\0' && Self(data).mIsOpen) Self(data).Fail("the portal has gone before it answered");
}

void PortalDialog::HandleClosed(GDBusConnection*, gboolean, GError*, void* data) {
  Self(data).LoseBus();
}

}  // namespace

std::optional<FileChoice> AskPortal(const FileRequest& request, int cancelDescriptor, std::string& why) {
  const std::string address = SessionBusAddress();
  if (address.empty()) {
    why = "there is no session bus";
    return std::nullopt;
  }
  return PortalDialog(request, cancelDescriptor).Ask(address, why);
}

}  // namespace Platform
