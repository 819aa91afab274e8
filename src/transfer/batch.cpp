#include "transfer/batch.h"

#include "base/conversions.h"
#include "controls/list_box.h"
#include "session/commands.h"
#include "session/transfer_state.h"
#include "shell/activity_log.h"
#include "shell/asker.h"
#include "shell/busy_pointer.h"
#include "shell/options.h"
#include "shell/status_line.h"

#include <QAbstractButton>
#include <algorithm>

namespace {

QStringView WithoutBlanks(QStringView text)
{
    while (text.startsWith(u' ')) text = text.sliced(1);
    while (text.endsWith(u' ')) text.chop(1);
    return text;
}

void BeginCounting(int selected, TransferState& state)
{
    const int unfinished = state.BatchesRunning > 0 ? std::max(0, state.SelectedCount - state.FilesDone) : 0;
    state.SelectedCount = selected + unfinished;
    state.FilesDone = 0;
}

}  // namespace

QString Quoted(const QString& name)
{
    return u'"' + name + u'"';
}

Batch::Batch(TransferTools& tools)
    : Tools(tools), OwnNames(tools.State.TransferNames.first(
                        std::min<qsizetype>(tools.State.TransferCount, tools.State.TransferNames.size()))),
      SessionNumber(tools.State.SessionNumber)
{
    ++Tools.State.BatchesRunning;
}

Batch::~Batch()
{
    --Tools.State.BatchesRunning;
    Tools.Inet1.SetMoreToCome(false);
}

bool Batch::SessionEnded() const
{
    return Tools.State.SessionNumber != SessionNumber;
}

void Batch::TellSessionEnded(qsizetype notBegun)
{
    QString sentence = QStringLiteral("The session was closed.");
    if (notBegun > 0) sentence += QStringLiteral(" Files not begun: %1").arg(notBegun);
    Tools.Status.Show(sentence);
    Tools.Log.AddWithDateTime(sentence);
    Tools.Pointer.SetNormalPointer();
}

void Batch::TellCanceled()
{
    Tools.Chosen.EscapePressed = false;
    Tools.Status.Show("Canceled by user");
    Tools.Pointer.SetNormalPointer();
}

bool Batch::Issue(int operationKind, bool& inProgress, const QString& operation, const QString& name)
{
    Tools.State.CurrentFileName = Quoted(name);
    inProgress = true;
    Tools.Inet1.SetMoreToCome(++Issued < OwnNames.size());
    if (Tools.Errors.Attempt([&] { Tools.Session.Execute(operationKind, operation); })) return true;
    inProgress = false;
    Tools.Status.Show(Tools.Errors.Description());
    Tools.Log.AddWithDateTime(Tools.Errors.Description());
    return false;
}

int CollectSelection(const ListBox& source, TransferState& state, bool trimmed)
{
    int selected = 0;
    for (int index = 0; index < source.Count(); ++index) {
        if (!source.IsSelected(index)) continue;
        state.TransferNames.resize(++selected);
        state.TransferNames.back() = trimmed ? Trimmed(source.Entry(index)) : source.Entry(index);
    }
    BeginCounting(selected, state);
    return selected;
}

void CollectNames(const QStringList& names, TransferState& state)
{
    state.TransferNames = names;
    BeginCounting(static_cast<int>(names.size()), state);
}

void CountFinishedFile(TransferTools& tools, QAbstractButton& check1)
{
    TransferState& state = tools.State;
    if (++state.FilesDone < state.SelectedCount) return;
    if (tools.Chosen.AlarmOn) tools.PlayAlarm();
    if (check1.isChecked()) tools.HangUp();
    check1.setEnabled(true);
    tools.Status.Show({});
    state.FilesDone = 0;
}

bool AskToOverwrite(TransferTools& tools, const QString& question)
{
    return tools.Questions.Ask({question, "Tolvane", Question::QuestionMark, Question::YesNo, true}) == Answer::Yes;
}

bool SameName(QStringView left, QStringView right)
{
    return WithoutBlanks(left).compare(WithoutBlanks(right), Qt::CaseInsensitive) == 0;
}
