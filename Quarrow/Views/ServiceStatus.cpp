#include "Quarrow/Views/ServiceStatus.h"

#include "Quarrow/Views/Registration.h"

namespace quarrow {

namespace {

bool isClosed(const std::optional<fennick::FirewallFinding> &firewall) {
  return firewall && firewall->port == fennick::FirewallFinding::Port::closed;
}

} // namespace

ServiceStatus::ServiceStatus(ServerModel &server, QObject *parent) : QObject(parent), server_(server) {
  for (const auto change :
       {&ServerModel::portChanged, &ServerModel::addressesChanged, &ServerModel::errorChanged,
        &ServerModel::localNetworkStatusChanged, &ServerModel::firewallChanged})
    connect(&server_, change, this, &ServiceStatus::changed);
}

ServiceStatus *ServiceStatus::create(QQmlEngine *engine, QJSEngine *) {
  return new ServiceStatus(*ServerSingleton::instance, engine);
}

ServiceStatus::State ServiceStatus::state() const {
  if (server_.port())
    return listening();
  if (server_.error())
    return {Bad, tr("接收没有启动，照片暂时传不进来")};
  return {Pending, tr("正在启动…")};
}

ServiceStatus::State ServiceStatus::listening() const {
  using Kind = LocalNetworkStatus::Kind;
  if (!server_.addressesKnown())
    return {Pending, tr("正在查找局域网地址…")};
  if (server_.addresses().empty())
    return {Warning, tr("没有连接到局域网，连上后会自动恢复")};
  const auto &check = server_.localNetworkStatus();
  if (check.kind == Kind::failed)
    return {Warning, tr("手机可能连不上：%1").arg(check.message)};
  if (isClosed(server_.firewall()))
    return {Warning, tr("防火墙可能挡住了手机")};
  if (check.kind == Kind::unknown)
    return {Pending, tr("正在自检…")};
  return {Good, tr("可以接收，手机扫码即可")};
}

} // namespace quarrow
