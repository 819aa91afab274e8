#pragma once

#include <QObject>
#include <QString>
#include <functional>

class Asker;

/// The maker's pages in the user's browser. Nothing is opened before the user has agreed. User-interface thread.
class WebPages final : public QObject {
    Q_OBJECT

public:
    struct Tools {
        Asker& Questions;
        std::function<void(const QString& address)> OpenAddress;  ///< as platform/open_address.h
    };

    explicit WebPages(Tools tools);

    void Command3_Click();  ///< the main window's web button
    void Label6_Click();    ///< the links of the about box
    void Label7_Click();
    void ads_Click();  ///< a picture of the advertisement strip

private:
    Tools Use;
};
