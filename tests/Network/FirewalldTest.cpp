#include "FennickCore/Platform/Network/Firewalld.h"

#include "tests/Support/TemporaryFolder.h"

#include <gio/gio.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>
#include <future>
#include <map>
#include <memory>
#include <thread>
#include <vector>

namespace fennick {
namespace {

struct Unref {
  void operator()(gpointer object) const { ::g_object_unref(object); }
  void operator()(GMainContext *context) const { ::g_main_context_unref(context); }
  void operator()(GMainLoop *loop) const { ::g_main_loop_unref(loop); }
  void operator()(GDBusNodeInfo *node) const { ::g_dbus_node_info_unref(node); }
};
template <typename T>
using Owned = std::unique_ptr<T, Unref>;

class PrivateBus {
public:
  PrivateBus() { ::g_test_dbus_up(bus_.get()); }
  ~PrivateBus() { ::g_test_dbus_stop(bus_.get()); }
  PrivateBus(const PrivateBus &) = delete;
  PrivateBus &operator=(const PrivateBus &) = delete;
  [[nodiscard]] std::string address() const { return ::g_test_dbus_get_bus_address(bus_.get()); }

private:
  const Owned<GTestDBus> bus_{::g_test_dbus_new(G_TEST_DBUS_NONE)};
};

// Answers like firewalld. wlan0 is in the zone "home", which lists port 8000; eth0 in "guarded", which
// refuses questions; tun0 in "silent", which does not answer. The default zone accepts everything.
class FakeFirewalld {
public:
  explicit FakeFirewalld(const std::string &bus) : thread_([this, bus] { run(bus); }) {
    ready_.get_future().wait();
  }
  ~FakeFirewalld() {
    ::g_main_loop_quit(loop_.get());
    thread_.join();
  }
  FakeFirewalld(const FakeFirewalld &) = delete;
  FakeFirewalld &operator=(const FakeFirewalld &) = delete;

private:
  static constexpr const char *kName = "org.fedoraproject.FirewallD1";
  static constexpr const char *kInterfaces = R"(<node>
    <interface name="org.fedoraproject.FirewallD1">
      <method name="getDefaultZone"><arg type="s" direction="out"/></method>
    </interface>
    <interface name="org.fedoraproject.FirewallD1.zone">
      <method name="getZoneOfInterface"><arg type="s" direction="in"/><arg type="s" direction="out"/></method>
      <method name="queryPort">
        <arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="s" direction="in"/>
        <arg type="b" direction="out"/>
      </method>
      <method name="getZoneSettings2"><arg type="s" direction="in"/><arg type="a{sv}" direction="out"/></method>
    </interface></node>)";

  void run(const std::string &bus) {
    ::g_main_context_push_thread_default(context_.get());
    const Owned<GDBusConnection> connection(::g_dbus_connection_new_for_address_sync(
        bus.c_str(),
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, nullptr, nullptr));
    const Owned<GDBusNodeInfo> node(::g_dbus_node_info_new_for_xml(kInterfaces, nullptr));
    constexpr GDBusInterfaceVTable kTable{&answer, nullptr, nullptr, {}};
    for (const char *name : {kName, "org.fedoraproject.FirewallD1.zone"})
      ::g_dbus_connection_register_object(connection.get(), "/org/fedoraproject/FirewallD1",
                                          ::g_dbus_node_info_lookup_interface(node.get(), name), &kTable,
                                          this, nullptr, nullptr);
    ::g_variant_unref(::g_dbus_connection_call_sync(connection.get(), "org.freedesktop.DBus",
                                                    "/org/freedesktop/DBus", "org.freedesktop.DBus",
                                                    "RequestName", ::g_variant_new("(su)", kName, 0U),
                                                    nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr));
    ready_.set_value();
    ::g_main_loop_run(loop_.get());
    ::g_main_context_pop_thread_default(context_.get());
  }

  static void answer(GDBusConnection *, const gchar *, const gchar *, const gchar *, const gchar *method,
                     GVariant *arguments, GDBusMethodInvocation *invocation, gpointer self) {
    std::vector<std::string> texts;
    for (gsize i = 0; i < ::g_variant_n_children(arguments); ++i) {
      const char *text = nullptr;
      ::g_variant_get_child(arguments, i, "&s", &text);
      texts.emplace_back(text);
    }
    static_cast<FakeFirewalld *>(self)->answer(method, texts, invocation);
  }

  void answer(const std::string &method, const std::vector<std::string> &texts,
              GDBusMethodInvocation *invocation) {
    const auto reply = [&](GVariant *value) { ::g_dbus_method_invocation_return_value(invocation, value); };
    if (method == "getDefaultZone")
      reply(::g_variant_new("(s)", "public"));
    else if (method == "getZoneOfInterface")
      reply(::g_variant_new("(s)", zones_[texts[0]].c_str()));
    else if (texts[0] == "guarded")
      ::g_dbus_method_invocation_return_dbus_error(invocation, "org.freedesktop.DBus.Error.AccessDenied",
                                                   "no");
    else if (texts[0] == "silent")
      unanswered_.emplace_back(invocation);
    else if (method == "queryPort")
      reply(::g_variant_new("(b)", texts == std::vector<std::string>{"home", "8000", "tcp"}));
    else
      reply(::g_variant_new_parsed(texts[0] == "public" ? "({'target': <'ACCEPT'>},)" : "(@a{sv} {},)"));
  }

  std::map<std::string, std::string> zones_{{"wlan0", "home"}, {"eth0", "guarded"}, {"tun0", "silent"}};
  std::vector<Owned<GDBusMethodInvocation>> unanswered_;
  const Owned<GMainContext> context_{::g_main_context_new()};
  const Owned<GMainLoop> loop_{::g_main_loop_new(context_.get(), FALSE)};
  std::promise<void> ready_;
  std::thread thread_; // last: it uses the above
};

TEST(FirewalldTest, AsksForTheZoneOfTheInterface) {
  const PrivateBus bus;
  EXPECT_FALSE(askFirewalld(8000, "wlan0", bus.address())); // it does not run
  const FakeFirewalld service(bus.address());
  const std::tuple<std::string, std::uint16_t, FirewalldAnswers> cases[] = {
      {"wlan0", 8000, {"home", true, "default"}}, {"wlan0", 8001, {"home", false, "default"}},
      {"eth0", 8000, {"guarded", {}, {}}},        {"eth1", 8000, {"public", false, "ACCEPT"}},
      {"", 8000, {"public", false, "ACCEPT"}},
  };
  for (const auto &[interface, port, answers] : cases)
    EXPECT_EQ(askFirewalld(port, interface, bus.address()), answers) << interface << port;
  EXPECT_EQ(askFirewalld(8000, "tun0", bus.address(), Seconds(0.5)), (FirewalldAnswers{.zone = "silent"}));
}

} // namespace
} // namespace fennick
