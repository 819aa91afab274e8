#include "support/system_proxy.h"

#include <QtGlobal>
#include <string>
#ifdef Q_OS_WIN
#include <windows.h>
#endif

#ifdef Q_OS_WIN

// For this process alone another key takes the place of the user's own.
struct SystemProxySettings::Place {
    HKEY User = nullptr;
    HKEY Settings = nullptr;
    std::wstring Name;

    void Write(const wchar_t* name, const QString& text) const
    {
        const std::wstring value = text.toStdWString();
        RegSetValueExW(Settings, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(value.c_str()),
                       static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t)));
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
    make(It->User, L"Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings", It->Settings);
    RegOverridePredefKey(HKEY_CURRENT_USER, It->User);
}

SystemProxySettings::~SystemProxySettings()
{
    RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
    RegCloseKey(It->Settings);
    RegCloseKey(It->User);
    RegDeleteTreeW(HKEY_CURRENT_USER, It->Name.c_str());
}

void SystemProxySettings::Use(const QString& scheme, const QString& kind, int port)
{
    const DWORD on = 1;
    It->Write(L"ProxyServer",
              QStringLiteral("%1=127.0.0.1:%2").arg(kind == u"socks5" ? QStringLiteral("socks") : scheme).arg(port));
    RegSetValueExW(It->Settings, L"ProxyEnable", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&on), sizeof on);
}

void SystemProxySettings::Except(const QString& host)
{
    It->Write(L"ProxyOverride", host);
}

void SystemProxySettings::Clear()
{
    for (const wchar_t* name : {L"ProxyEnable", L"ProxyServer", L"ProxyOverride"}) RegDeleteValueW(It->Settings, name);
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
