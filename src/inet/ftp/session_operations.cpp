#include "base/listing_name.h"
#include "base/local_name.h"
#include "inet/ftp/data_address.h"
#include "inet/ftp/local_name.h"
#include "inet/ftp/session.h"

#include <algorithm>
#include <string_view>
#include <system_error>

namespace Ftp {

namespace {

constexpr std::size_t MaxListingBytes = std::size_t{512} * 1024 * 1024;
constexpr std::uint64_t SizeAskedFrom = std::uint64_t{64} * 1024;
constexpr int ServiceClosing = 421;  // RFC 959, 4.2.2
constexpr int NotLoggedIn = 530;     // the same
constexpr Milliseconds GoodbyeLimit = std::chrono::seconds(2);
constexpr int GoOn = 350;  // RFC 959, 4.2.2
constexpr int Disconnecting = 9;
constexpr int Disconnected = 10;

bool IsBad(const Reply& reply)
{
    return reply.KindOf() != Reply::Done;
}

/// Some servers answer the listing of an empty folder with a refusal.
bool MeansEmptyFolder(const Reply& reply)
{
    constexpr int NothingNow = 450;
    constexpr int NothingThere = 550;
    if (reply.Code == NothingNow) return true;
    std::string text = reply.Text();
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char byte) { return std::tolower(byte); });
    return reply.Code == NothingThere &&
           (text.find("no files") != std::string::npos || text.find("empty") != std::string::npos);
}

std::string_view Trimmed(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

/// The line of a listing that is the text, but for blanks at its ends.
std::optional<std::string_view> LineOf(std::string_view listing, std::string_view text)
{
    if (text.empty() || text.find('\n') != std::string_view::npos) return std::nullopt;
    for (std::size_t at = listing.find(text); at != std::string_view::npos; at = listing.find(text, at + 1)) {
        const std::size_t before = listing.rfind('\n', at);
        const std::size_t start = before == std::string_view::npos || at == 0 ? 0 : before + 1;
        const std::size_t end = listing.find("\r\n", at);
        if (end == std::string_view::npos) return std::nullopt;
        const std::string_view line = listing.substr(start, end - start);
        if (line == text || Trimmed(line) == text) return line;
    }
    return std::nullopt;
}

Failure CutFailure()
{
    return {Failure::Protocol, SecureChannelError,
            "The secure data connection was cut, and what has arrived may not be all of it."};
}

/// A file of the given name in a folder. The name is looked at only when the server has agreed to send: until then
/// another one may be tried.
class NamedFileSink final : public Sink {
public:
    NamedFileSink(const std::filesystem::path& folder, std::string name)
        : File(LocalPath(folder, name)), Name(std::move(name))
    {
    }

    void Open() override
    {
        CheckLocalName(Name);
        File.Open();
    }

    void Write(const char* bytes, std::size_t size) override { File.Write(bytes, size); }

    void Keep() override { File.Keep(); }

    int Descriptor() const override { return File.Descriptor(); }

private:
    FileSink File;
    std::string Name;
};

}  // namespace

Task<std::string> Session::Do(ListNames)
{
    co_return co_await ListInUtf8("NLST");
}

Task<std::string> Session::Do(ListFull)
{
    LastListing = co_await ListInUtf8("LIST");
    co_return LastListing;
}

Task<std::string> Session::List(std::string command)
{
    std::vector<std::string> ahead = LinesBefore('A', {}, command);
    co_await SendAhead(std::move(ahead));
    co_await SetType('A');
    const std::shared_ptr<Wire> data = co_await OpenData();
    Unfinished = true;
    co_await Control->Send(std::move(command));
    Transfer transfer(Means(), *Control, data);
    MemorySink sink(MaxListingBytes);
    const Reply end = co_await transfer.Receive(sink);
    Unfinished = false;
    if (!IsBad(end) && transfer.WasCut()) throw CutFailure();
    if (!IsBad(end)) co_return std::move(sink.Bytes);
    if (!MeansEmptyFolder(end)) throw RefusalOf(end);
    co_return std::string();
}

Task<std::string> Session::Do(ChangeFolder operation)
{
    std::string accepted;
    const Reply reply = co_await SayWithName("CWD ", std::move(operation.Name), &accepted);
    if (IsBad(reply)) throw RefusalOf(reply);
    Moves.push_back(std::move(accepted));
    co_return std::string();
}

Task<std::string> Session::Do(FolderUp)
{
    Reply reply = co_await Control->Say("CDUP");
    if (reply.Code == 500 || reply.Code == 502) reply = co_await Control->Say("CWD ..");
    if (IsBad(reply)) throw RefusalOf(reply);
    Moves.emplace_back();
    co_return std::string();
}

Task<std::string> Session::Do(Receive operation)
{
    if (!operation.LocalGiven && !NameInLine(operation.Remote)) CheckLocalName(operation.Remote);
    const std::string first = FirstChoice(operation.Remote);
    const Reply refusal = co_await ReceiveAs(first, SinkFor(operation, first));
    if (!IsBad(refusal)) co_return std::string();
    const std::optional<std::string> name = first == operation.Remote ? NameInLine(first) : std::nullopt;
    if (refusal.KindOf() != Reply::Refused || !name) throw RefusalOf(refusal);
    TellSecondTry(*name);
    const Reply second = co_await ReceiveAs(*name, SinkFor(operation, *name));
    if (IsBad(second)) throw RefusalOf(refusal);
    Can.LinesAsNames = false;
    co_return std::string();
}

// A local name of its own is a path that the program has composed; otherwise the file gets the name it has been asked
// for by, in the local folder and nowhere else.
std::unique_ptr<Sink> Session::SinkFor(const Receive& operation, const std::string& name) const
{
    if (operation.LocalGiven) return std::make_unique<FileSink>(LocalPath(Folder, operation.Local));
    return std::make_unique<NamedFileSink>(Folder, name);
}

Task<Reply> Session::ReceiveAs(std::string name, std::unique_ptr<Sink> sink)
{
    Reply end = co_await Retrieve(std::move(name), *sink);
    if (!IsBad(end)) sink->Keep();
    co_return end;
}

Task<Reply> Session::Retrieve(std::string name, Sink& sink)
{
    RequireSendable(name);
    std::string command = "RETR " + name;
    std::vector<std::string> ahead = LinesBefore('I', name, command);
    co_await SendAhead(std::move(ahead));
    co_await SetType('I');
    const std::shared_ptr<Wire> data = co_await OpenData();
    const std::optional<std::uint64_t> size = co_await AskSize(name);
    co_await Control->Send(std::move(command));
    Unfinished = true;
    Reply end;
    {
        Transfer transfer(Means(), *Control, data, size);
        end = co_await transfer.Receive(sink);
        if (!IsBad(end) && transfer.WasCut() && size != transfer.Bytes()) co_await CheckCut(name, transfer);
        if (!IsBad(end)) co_await CheckReceived(std::move(name), transfer, size);
    }
    Unfinished = false;
    if (!IsBad(end)) co_await AskForNextPort();
    co_return end;
}

// Nothing when the server does not know, or gives no figure: a size is a check, never a condition (RFC 3659, 4).
Task<std::optional<std::uint64_t>> Session::AskSize(std::string name)
{
    if (!Can.Size) co_return std::nullopt;
    std::string command = "SIZE " + name;
    const Reply reply = co_await Control->Say(std::move(command));
    if (reply.Code == 500 || reply.Code == 502 || reply.Code == 504) Can.Size = false;
    const bool isOver = reply.Code == ServiceClosing || reply.Code == NotLoggedIn;
    if (isOver && !Unfinished) throw RefusalOf(reply);
    if (reply.KindOf() != Reply::Done) co_return std::nullopt;
    const std::optional<std::uint64_t> size = SizeFigure(reply);
    Can.SizeWorked = Can.SizeWorked || size;
    co_return size;
}

// The server has confirmed the file already; that it went away since changes nothing.
Task<std::optional<std::uint64_t>> Session::AskSizeAfterwards(std::string name)
{
    try {
        co_return co_await AskSize(std::move(name));
    } catch (const Failure&) {
        if (Why.IsCancelled()) throw;
        Why.ForgiveTimeOut();
    }
    co_return std::nullopt;
}

// What was announced before the transfer may have been a guess, or the file has changed since; when less came, or more
// than SIZE has said, the server is asked again. More than it has is a file that was changed on the way, as by servers
// that write line ends anew.
Task<> Session::CheckReceived(std::string name, const Transfer& transfer, std::optional<std::uint64_t> size)
{
    Proof = Confirmation{transfer.Bytes(), size == transfer.Bytes()};
    const std::optional<std::uint64_t> announced = size ? size : AnnouncedSize(transfer.Opening());
    const bool isMore = size && transfer.Bytes() > *size;
    if (!announced || (!isMore && transfer.Bytes() >= *announced)) co_return;
    const std::optional<std::uint64_t> now = co_await AskSizeAfterwards(std::move(name));
    Proof->BySize = now == transfer.Bytes();
    if (now && transfer.Bytes() > *now)
        Tell.Remark("The file has " + std::to_string(transfer.Bytes()) + " bytes here and " + std::to_string(*now) +
                    " at the server: it was changed on the way, or is being written.");
    if (isMore || (now && transfer.Bytes() >= *now)) co_return;
    throw Failure{Failure::Protocol, ResponseError,
                  "The file arrived incomplete: " + std::to_string(transfer.Bytes()) + " of " +
                      std::to_string(now.value_or(*announced)) + " bytes."};
}

// Asking costs a round trip, as nothing may be sent while a transfer is under way: small files are not worth it.
Task<> Session::CheckSent(std::string name, const Transfer& transfer)
{
    Proof = Confirmation{transfer.Bytes(), false};
    const bool inVain = transfer.WasSentInVain();
    if (!inVain && (!Can.SizeWorked || transfer.Bytes() < SizeAskedFrom)) co_return;
    const std::optional<std::uint64_t> size = co_await AskSizeAfterwards(std::move(name));
    Proof->BySize = size == transfer.Bytes();
    if (inVain && !size)
        throw Failure{Failure::Connection, ResetError,
                      "The data connection was reset before all of the file was read."};
    if (!size || transfer.Bytes() <= *size) co_return;
    throw Failure{Failure::Protocol, ResponseError,
                  "The server has stored only " + std::to_string(*size) + " of " + std::to_string(transfer.Bytes()) +
                      " bytes."};
}

// The secure connection ended without saying so: a careless server, or somebody who wants the file to be shorter.
Task<> Session::CheckCut(std::string name, const Transfer& transfer)
{
    std::string command = "SIZE " + name;
    const Reply reply = co_await Control->Say(std::move(command));
    if (IsBad(reply) || SizeFigure(reply) != transfer.Bytes()) throw CutFailure();
}

// As with GET, a local name of its own is a path that the program has composed.
Task<std::string> Session::Do(Ftp::Send operation)
{
    if (operation.Local == operation.Remote) CheckLocalName(operation.Local);
    RequireSendable(operation.Remote);
    const std::filesystem::path path = LocalPath(Folder, operation.Local);
    std::unique_ptr<SourceFile> file;
    try {
        file = std::make_unique<SourceFile>(path);
    } catch (const std::system_error& error) {
        throw LocalFailure(path, error.code().value());
    }
    std::string command = "STOR " + operation.Remote;
    std::vector<std::string> ahead = LinesBefore('I', {}, command);
    co_await SendAhead(std::move(ahead));
    co_await SetType('I');
    const std::shared_ptr<Wire> data = co_await OpenData();
    const bool eager = Control->IsAhead();
    co_await Control->Send(std::move(command));
    Unfinished = true;
    Transfer transfer(Means(), *Control, data, file->Size());
    const Reply end = co_await transfer.Send(*file, path, eager);
    if (!IsBad(end)) co_await CheckSent(std::move(operation.Remote), transfer);
    Unfinished = false;
    if (IsBad(end)) throw RefusalOf(end);
    co_await AskForNextPort();
    co_return std::string();
}

Task<std::string> Session::Do(Delete operation)
{
    std::string accepted;
    const Reply reply = co_await SayWithName("DELE ", std::move(operation.Name), &accepted);
    if (IsBad(reply)) throw RefusalOf(reply);
    co_return std::string();
}

Task<std::string> Session::Do(Rename operation)
{
    RequireSendable(operation.To);
    std::string accepted;
    const Reply reply = co_await SayWithName("RNFR ", std::move(operation.From), &accepted);
    if (IsBad(reply) && reply.Code != GoOn) throw RefusalOf(reply);
    std::string command = "RNTO " + operation.To;
    (void)co_await Control->Expect(std::move(command));
    co_return std::string();
}

Task<std::string> Session::Do(MakeFolder operation)
{
    std::string command = "MKD " + operation.Name;
    (void)co_await Control->Expect(std::move(command));
    co_return std::string();
}

Task<std::string> Session::Do(RemoveFolder operation)
{
    std::string accepted;
    const Reply reply = co_await SayWithName("RMD ", std::move(operation.Name), &accepted);
    if (IsBad(reply)) throw RefusalOf(reply);
    co_return std::string();
}

Task<std::string> Session::Do(Size operation)
{
    // The size that counts is the one of the bytes as they are (RFC 3659, 4).
    co_await SetType('I');
    std::string accepted;
    const Reply reply = co_await SayWithName("SIZE ", std::move(operation.Name), &accepted);
    if (IsBad(reply)) throw RefusalOf(reply);
    const std::optional<std::uint64_t> size = SizeFigure(reply);
    if (!size) throw Failure{Failure::Refused, reply.Code, "The server gives no size: " + reply.Text()};
    co_return std::to_string(*size);
}

Task<std::string> Session::Do(WorkingFolder)
{
    const Reply reply = co_await Control->Expect("PWD");
    const std::optional<std::string> path = QuotedPath(reply);
    if (!path) throw Failure{Failure::Refused, reply.Code, "The server names no folder: " + reply.Text()};
    co_return *path;
}

Task<std::string> Session::Do(Close)
{
    Tell.State(Disconnecting);
    if (Control && Control->IsAlive()) {
        Control->SetLimit(std::min(GoodbyeLimit, How.Limit));
        try {
            (void)co_await Control->Say("QUIT");
        } catch (const Failure&) {
            // The connection is closed either way.
        }
    }
    CloseConnection();
    Moves.clear();
    LastListing.clear();
    Tell.State(Disconnected);
    co_return std::string();
}

// The text goes out as it was given. When the server refuses it, and it is a line of the last listing, the name
// inside that line is tried once; when that is refused too, the first refusal is what counts.
Task<Reply> Session::SayWithName(std::string command, std::string text, std::string* accepted)
{
    const std::string first = FirstChoice(text);
    std::string line = command + first;
    const Reply refusal = co_await Control->Say(std::move(line));
    *accepted = first;
    if (refusal.KindOf() != Reply::Refused || first != text) co_return refusal;
    const std::optional<std::string> name = NameInLine(text);
    if (!name) co_return refusal;
    TellSecondTry(*name);
    std::string again = command + *name;
    const Reply second = co_await Control->Say(std::move(again));
    if (IsBad(second) && second.Code != GoOn) co_return refusal;
    Can.LinesAsNames = false;
    *accepted = *name;
    co_return second;
}

std::optional<std::string> Session::NameInLine(const std::string& text) const
{
    if (!How.ListingLineHelp) return std::nullopt;
    const std::optional<std::string_view> line = LineOf(LastListing, text);
    if (!line) return std::nullopt;
    return NameInListingLine(*line);
}

/// What is sent first for a text: the text itself, or the name inside it once the server has refused such lines, or
/// where the line has a tab between its facts and its name.
std::string Session::FirstChoice(const std::string& text) const
{
    if (Can.LinesAsNames && IsSendable(text)) return text;
    return NameInLine(text).value_or(text);
}

void Session::TellSecondTry(const std::string& name) const
{
    Tell.Remark("The server does not take the listing line as a name; trying \"" + name + "\" from it.");
}

}  // namespace Ftp
