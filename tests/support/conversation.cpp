#include "support/conversation.h"

#include "base/byte_text.h"

#include <asio/co_spawn.hpp>
#include <exception>
#include <fstream>
#include <iterator>

Conversation::Conversation(const std::string& script, Disturbance disturbance)
{
    Ftp::Observer observer;
    observer.State = [this](int state) { States.push_back(state); };
    observer.Remark = [this](std::string line) { Remarks.push_back(std::move(line)); };
    observer.Ask = [this](unsigned number, const Ftp::Certificate& shown) {
        Asked.push_back(shown);
        if (WhenAsked)
            WhenAsked(number, shown);
        else
            Session->Answer(number, false);
    };
    Session.emplace(Net, Clock, std::move(observer), Book);
    Server.Play(script, std::move(disturbance));
}

Conversation::~Conversation()
{
    Session->Drop();
    Settle();
    Session.reset();
    Settle();
    std::error_code ignored;
    std::filesystem::remove_all(Place(), ignored);
}

Ftp::Outcome Conversation::Do(const std::string& operation)
{
    const std::optional<Ftp::Operation> parsed = Ftp::ParseOperation(operation);
    if (!parsed) return {false, -1, "not an operation: " + operation, {}};
    return Run(Session->Perform(Where, How, *parsed, Place() / LocalPlace));
}

Ftp::Outcome Conversation::Fetch(const std::string& path)
{
    Ftp::Target target = Where;
    target.Path = path;
    return Run(Session->Fetch(target, How));
}

Ftp::Outcome Conversation::Run(Ftp::Task<Ftp::Outcome> work)
{
    const auto outcome = std::make_shared<std::optional<Ftp::Outcome>>();
    const Ftp::Milliseconds start = Clock.Now();
    asio::co_spawn(Context, std::move(work), [outcome](const std::exception_ptr& error, Ftp::Outcome got) {
        *outcome = error ? Ftp::Outcome{false, -1, "it threw", {}} : std::move(got);
    });
    do Settle();
    while (!*outcome && Clock.JumpToNextAlarm());
    LastDuration = Clock.Now() - start;
    Settle();
    return outcome->value_or(Ftp::Outcome{false, -1, "it never ended", {}});
}

void Conversation::Let(Ftp::Milliseconds time)
{
    bool passed = false;
    const auto alarm = Clock.After(time, [&passed] { passed = true; });
    do Settle();
    while (!passed && Clock.JumpToNextAlarm());
}

void Conversation::Settle()
{
    Context.restart();
    while (Context.poll() > 0) Context.restart();
}

QStringList Conversation::LocalFiles() const
{
    QStringList names;
    for (const auto& entry : std::filesystem::directory_iterator(Place())) names << PathText(entry.path().filename());
    names.sort();
    return names;
}

QByteArray Conversation::LocalFile(const QString& name) const
{
    std::ifstream file(Place() / FilePath(name), std::ios::binary);
    if (!file) return "(no such file)";
    return QByteArray::fromStdString(std::string(std::istreambuf_iterator<char>(file), {}));
}

void Conversation::MakeLocalFile(const QString& name, const QByteArray& bytes) const
{
    std::ofstream(Place() / FilePath(name), std::ios::binary) << bytes.toStdString();
}

std::filesystem::path Conversation::Place() const
{
    return FilePath(Folder.path());
}
