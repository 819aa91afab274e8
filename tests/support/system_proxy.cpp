#include "support/system_proxy.h"

#include <QByteArray>
#include <cstdint>
#include <string>
#ifdef Q_OS_WIN
#include <windows.h>
#endif

#ifdef Q_OS_WIN

// For this process another key takes the place of the user's own as long as a proxy is set; not longer, for the user's
// own has more in it than proxies. The settings are one value, whose layout is as old as the system's first browser.
struct SystemProxySettings::Place {
    HKEY User = nullptr;
    HKEY Connections = nullptr;
    std::wstring Name;
    QByteArray Server;
    QByteArray Exceptions;

    void Write() const
    {
        constexpr std::uint32_t Version = 70;
        constexpr std::uint32_t Direct = 1;
        constexpr std::uint32_t ByProxy = 2;
        QByteArray value;
        const auto number = [&value](std::uint32_t one) {
            value.append(reinterpret_cast<const char*>(&one), sizeof one);
        };
        number(Version);
        number(0);
        number(Server.isEmpty() ? Direct : Direct | ByProxy);
        for (const QByteArray& text : {Server, Exceptions, QByteArray()}) {
            number(static_cast<std::uint32_t>(text.size()));
            value += text;
        }
        value += QByteArray(32, '\0');
        RegSetValueExW(Connections, L"DefaultConnectionSettings", 0, REG_BINARY,
                       reinterpret_cast<const BYTE*>(value.constData()), static_cast<DWORD>(value.size()));
        RegOverridePredefKey(HKEY_CURRENT_USER, Server.isEmpty() ? nullptr : User);
    }
};

SystemProxySettings::SystemProxySettings() : It(std::make_unique<Place>())
{
    It->Name = L"Software\\Tolvane test " + std::to_wstring(GetCurrentProcessId());
    const auto make = [](HKEY within, const wchar_t* name, HKEY& key) {
        const LSTATUS status =
            RegCreateKeyExW(within, name, 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS, nullptr, &key, nullptr);
        if (status != ERROR_SUCCESS) qFatal("the registry cannot be written to (%ld)", status);
    };
    make(HKEY_CURRENT_USER, It->Name.c_str(), It->User);
    make(It->User, L"Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings\\Connections", It->Connections);
}

SystemProxySettings::~SystemProxySettings()
{
    Clear();
    RegCloseKey(It->Connections);
    RegCloseKey(It->User);
    RegDeleteTreeW(HKEY_CURRENT_USER, It->Name.c_str());
}

void SystemProxySettings::Use(const QString& scheme, const QString& kind, int port)
{
    const QString tag = kind == u"socks5" ? QStringLiteral("socks") : scheme;
    It->Server = QStringLiteral("%1=127.0.0.1:%2").arg(tag).arg(port).toLatin1();
    It->Write();
}

void SystemProxySettings::Except(const QString& host)
{
    It->Exceptions = host.toLatin1();
    It->Write();
}

void SystemProxySettings::Clear()
{
    It->Server.clear();
    It->Exceptions.clear();
    It->Write();
}

#else

struct SystemProxySettings::Place {};

SystemProxySettings::SystemProxySettings()
{
    Clear();
}

SystemProxySettings::~SystemProxySettings()
{
    Clear();
}

void SystemProxySettings::Use(const QString& scheme, const QString& kind, int port)
{
    qputenv((scheme + QStringLiteral("_proxy")).toLatin1().constData(),
            QStringLiteral("%1://127.0.0.1:%2").arg(kind).arg(port).toLatin1());
}

void SystemProxySettings::Except(const QString& host)
{
    qputenv("no_proxy", host.toLatin1());
}

void SystemProxySettings::Clear()
{
    for (const char* name : {"http_proxy", "https_proxy", "ftp_proxy", "all_proxy", "no_proxy", "HTTP_PROXY",
                             "HTTPS_PROXY", "FTP_PROXY", "ALL_PROXY", "NO_PROXY"})
        qunsetenv(name);
}

#endif
