#pragma once

#include "base/byte_text.h"
#include "inet/transfer_component.h"
#include "support/real_servers.h"
#include "support/test_files.h"
#include "support/visitor.h"

#include <QtTest>
#include <map>
#include <memory>

/// A test whose functions each run with every server, by IPv4 and IPv6. At the end it prints what worked with which.
class AllServersTest : public QObject {
    Q_OBJECT

protected:
    /// The rows of a test function, with columns "kind" and "address".
    void AllServers();

    RealServer& Server() { return *Servers.at(QTest::currentDataTag()); }

    /// A path in the test's own folder on the server, and in the folder that is current on this side.
    QString Remote(const QByteArray& name) const { return Shared + u'/' + BytesToText(name); }

    QString Local(const QByteArray& name) const { return Here->path() + u'/' + BytesToText(name); }

    /// Every entry of the current folder, hidden ones included.
    QStringList LocalFiles() const;

    Visit Do(const QString& operation) { return Guest->Do(operation); }

    std::unique_ptr<TransferComponent> Component;
    std::unique_ptr<Visitor> Guest;  ///< gives the component its commands
    QString Shared;                  ///< the test's own folder on the server

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();

private:
    std::map<QString, std::unique_ptr<RealServer>> Servers;
    std::unique_ptr<QTemporaryDir> Here;
    QString Begun;  ///< where the process's own folder was
    int Tests = 0;
    QStringList Rows;
    std::map<QString, std::map<QString, QString>> Table;
};

using States = QList<int>;

const States FirstCommand = {1, 2, 3, 4, 5, 6, 7, 8, 12};
const States LaterCommand = {5, 6, 7, 8, 12};

/// A name as operations carry it.
QString Quoted(const QByteArray& name);

QStringList LinesOf(const QString& reply);

/// What LS lists, in order; some servers name the folder itself and the one above, too.
QStringList NamesOf(const QString& reply);

/// The line of a listing that ends with the name.
QString LineWith(const QString& listing, const QByteArray& name);

#define QVERIFY_GOOD(visit)                                                                                            \
    do {                                                                                                               \
        const Visit got_ = (visit);                                                                                    \
        QVERIFY2(got_.Good(), qPrintable(got_.Account()));                                                             \
    } while (false)

#define QCOMPARE_REFUSED(visit)                                                                                        \
    do {                                                                                                               \
        const Visit got_ = (visit);                                                                                    \
        QVERIFY2(!got_.States.isEmpty() && got_.States.last() == Inet::Error, qPrintable(got_.Account()));             \
        QVERIFY2(got_.Code >= 500 && got_.Code < 600 && !got_.Info.isEmpty(), qPrintable(got_.Account()));             \
    } while (false)
