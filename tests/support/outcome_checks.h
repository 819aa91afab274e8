#pragma once

/// Checks on a Conversation that say what went wrong.

#define QVERIFY_GOOD(outcome)                                                                                          \
    do {                                                                                                               \
        const Ftp::Outcome got_ = (outcome);                                                                           \
        QVERIFY2(got_.Good, qPrintable(QString("%1 %2").arg(got_.Code).arg(QString::fromStdString(got_.Text))));       \
    } while (false)

#define QCOMPARE_FAILED(outcome, code)                                                                                 \
    do {                                                                                                               \
        const Ftp::Outcome got_ = (outcome);                                                                           \
        QVERIFY2(!got_.Good && got_.Code == (code),                                                                    \
                 qPrintable(QString("%1 %2").arg(got_.Code).arg(QString::fromStdString(got_.Text))));                  \
    } while (false)

#define QVERIFY_FOLLOWED(talk) QVERIFY2((talk).Server.Finished(), (talk).Server.Complaint().c_str())
