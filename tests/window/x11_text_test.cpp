#include "sites/x11_text.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QTest>
#include <memory>
#include <string_view>
#include <xcb/xcb.h>

namespace {

/// Another program of the desktop: owns the clipboard, and answers requests only when it is told to.
class Owner {
public:
    explicit Owner(const QByteArray& display) : X(xcb_connect(display.constData(), nullptr))
    {
        Window = xcb_generate_id(X);
        const xcb_screen_t& screen = *xcb_setup_roots_iterator(xcb_get_setup(X)).data;
        xcb_create_window(X, XCB_COPY_FROM_PARENT, Window, screen.root, 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                          XCB_COPY_FROM_PARENT, 0, nullptr);
        xcb_set_selection_owner(X, Window, Atom("CLIPBOARD"), XCB_CURRENT_TIME);
        Sync();
    }

    ~Owner() { xcb_disconnect(X); }

    Owner(const Owner&) = delete;
    Owner& operator=(const Owner&) = delete;

    xcb_atom_t Atom(std::string_view name) const
    {
        auto* reply = xcb_intern_atom_reply(
            X, xcb_intern_atom(X, 0, static_cast<std::uint16_t>(name.size()), name.data()), nullptr);
        const xcb_atom_t atom = reply->atom;
        free(reply);
        return atom;
    }

    /// Whether a request has come.
    bool IsAsked()
    {
        while (auto* event = xcb_poll_for_event(X)) {
            if ((event->response_type & 0x7F) == XCB_SELECTION_REQUEST)
                Request = *reinterpret_cast<xcb_selection_request_event_t*>(event);
            free(event);
        }
        return Request.requestor != XCB_WINDOW_NONE;
    }

    void AnswerText(const QByteArray& text)
    {
        xcb_change_property(X, XCB_PROP_MODE_REPLACE, Request.requestor, Request.property, Atom("UTF8_STRING"), 8,
                            static_cast<std::uint32_t>(text.size()), text.constData());
        Notify(Request.property);
    }

    void AnswerInPieces(std::uint32_t bytes)
    {
        xcb_change_property(X, XCB_PROP_MODE_REPLACE, Request.requestor, Request.property, Atom("INCR"), 32, 1, &bytes);
        Notify(Request.property);
    }

    void Refuse() { Notify(XCB_ATOM_NONE); }

private:
    void Notify(xcb_atom_t property)
    {
        union {
            xcb_selection_notify_event_t Event;
            char Bytes[32] = {};
        } answer;

        answer.Event.response_type = XCB_SELECTION_NOTIFY;
        answer.Event.time = Request.time;
        answer.Event.requestor = Request.requestor;
        answer.Event.selection = Request.selection;
        answer.Event.target = Request.target;
        answer.Event.property = property;
        xcb_send_event(X, 0, Request.requestor, 0, answer.Bytes);
        Sync();
    }

    void Sync() const { free(xcb_get_input_focus_reply(X, xcb_get_input_focus(X), nullptr)); }

    xcb_connection_t* X;
    xcb_window_t Window;
    xcb_selection_request_event_t Request = {};
};

}  // namespace

class X11TextTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void init();

    void TheOwnersTextArrives();
    void AnOwnerThatDoesNotAnswerHoldsNobodyUp();
    void ALateAnswerToAnOlderRequestIsDropped();
    void AForgottenRequestBringsNothing();
    void WithoutAnOwnerTheTextIsEmpty();
    void AnOwnerWithoutTextGivesAnEmptyOne();
    void ATextSentInPiecesIsNotFetched();
    void NoMoreIsFetchedThanAskedFor();
    void WithoutADisplayNothingIsAsked();

private:
    QString Awaited()
    {
        std::optional<QString> text;
        if (!QTest::qWaitFor([&] { return (text = Text->Poll()).has_value(); })) return "nothing arrived";
        return *text;
    }

    QProcess Server;
    QByteArray Display;
    std::unique_ptr<X11Text> Text;
};

void X11TextTest::initTestCase()
{
    Server.setStandardErrorFile(QProcess::nullDevice());
    Server.start("Xvfb", {"-displayfd", "1", "-screen", "0", "64x64x24", "-nolisten", "tcp"});
    QVERIFY2(Server.waitForStarted(), "Xvfb is needed");
    QVERIFY(Server.waitForReadyRead());
    Display = ":" + Server.readLine().trimmed();
}

void X11TextTest::cleanupTestCase()
{
    Text.reset();
    Server.terminate();
    Server.waitForFinished();
}

void X11TextTest::init()
{
    Text = std::make_unique<X11Text>(Display);
    QVERIFY(Text->IsConnected());
}

void X11TextTest::TheOwnersTextArrives()
{
    Owner owner(Display);
    QVERIFY(!Text->Poll().has_value());
    Text->Request(1000);
    QTRY_VERIFY(owner.IsAsked());
    QVERIFY(!Text->Poll().has_value());
    owner.AnswerText("ftp://caf\xC3\xA9");
    QCOMPARE(Awaited(), QString::fromUtf8("ftp://caf\xC3\xA9"));
    QVERIFY(!Text->Poll().has_value());
}

void X11TextTest::AnOwnerThatDoesNotAnswerHoldsNobodyUp()
{
    Owner owner(Display);
    QElapsedTimer time;
    time.start();
    Text->Request(1000);
    for (int tick = 0; tick < 100; ++tick) QVERIFY(!Text->Poll().has_value());
    QVERIFY2(time.elapsed() < 5'000, qPrintable(QString("%1 ms").arg(time.elapsed())));
    QTRY_VERIFY(owner.IsAsked());
}

void X11TextTest::ALateAnswerToAnOlderRequestIsDropped()
{
    Owner slow(Display);
    Text->Request(1000);
    QTRY_VERIFY(slow.IsAsked());
    Owner quick(Display);
    Text->Request(1000);
    QTRY_VERIFY(quick.IsAsked());
    slow.AnswerText("old");
    quick.AnswerText("new");
    QCOMPARE(Awaited(), QString("new"));
    QVERIFY(!Text->Poll().has_value());
}

void X11TextTest::AForgottenRequestBringsNothing()
{
    Owner owner(Display);
    Text->Request(1000);
    QTRY_VERIFY(owner.IsAsked());
    Text->Forget();
    owner.AnswerText("late");
    Text->Request(1000);
    QVERIFY(!Text->Poll().has_value());
}

void X11TextTest::WithoutAnOwnerTheTextIsEmpty()
{
    Text->Request(1000);
    QCOMPARE(Awaited(), QString());
}

void X11TextTest::AnOwnerWithoutTextGivesAnEmptyOne()
{
    Owner owner(Display);
    Text->Request(1000);
    QTRY_VERIFY(owner.IsAsked());
    owner.Refuse();
    QCOMPARE(Awaited(), QString());
}

void X11TextTest::ATextSentInPiecesIsNotFetched()
{
    Owner owner(Display);
    Text->Request(1000);
    QTRY_VERIFY(owner.IsAsked());
    owner.AnswerInPieces(50'000'000);
    QCOMPARE(Awaited(), QString());
}

void X11TextTest::NoMoreIsFetchedThanAskedFor()
{
    Owner owner(Display);
    Text->Request(400);
    QTRY_VERIFY(owner.IsAsked());
    owner.AnswerText(QByteArray(100'000, 'x'));
    QCOMPARE(Awaited(), QString(400, u'x'));
}

void X11TextTest::WithoutADisplayNothingIsAsked()
{
    X11Text none(":no-such-display");
    QVERIFY(!none.IsConnected());
    none.Request(1000);
    QVERIFY(!none.Poll().has_value());
}

QTEST_GUILESS_MAIN(X11TextTest)

#include "x11_text_test.moc"
