#pragma once

#include <QString>
#include <memory>

/// The proxies that the system tells programs about, as this process sees them: none at first, and what the system says
/// outside of the test never counts. Made before the first question for them; one of its kind at a time.
class SystemProxySettings {
public:
    SystemProxySettings();
    ~SystemProxySettings();
    SystemProxySettings(const SystemProxySettings&) = delete;
    SystemProxySettings& operator=(const SystemProxySettings&) = delete;

    /// For addresses that begin with `scheme` there is one on this computer; `kind` is http or socks5.
    void Use(const QString& scheme, const QString& kind, int port);

    /// This host is reached without one.
    void Except(const QString& host);

    /// There is none any more.
    void Clear();

private:
    struct Place;
    std::unique_ptr<Place> It;
};
