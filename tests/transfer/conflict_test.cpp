#include "transferbench.h"

using namespace Qt::StringLiterals;

// The answers of whole batches, tried out completely: every sequence of answers for batches of two
// and three files is run through the drivers and compared with what a simple description of the
// rules expects.

namespace {

/// What becomes of one item: no transfer, or a transfer from an offset.
constexpr qint64 Skipped = -1;

/// All ways to answer one conflict question. Rename is answered with a cancelled name, with a name
/// that is taken, or with a free one.
const std::vector<ConflictStep> &allSteps()
{
    static const std::vector<ConflictStep> steps = [] {
        std::vector<ConflictStep> result;
        for (const bool all : { false, true }) {
            for (const auto answer :
                 { ConflictAnswer::Skip, ConflictAnswer::Overwrite, ConflictAnswer::Resume }) {
                result.push_back({ answer, all, {} });
            }
            for (const auto &name : { std::optional<QString>(), std::optional(u"taken"_s),
                                      std::optional(u"free"_s) }) {
                result.push_back({ ConflictAnswer::Rename, all, name });
            }
        }
        return result;
    }();
    return steps;
}

/// Hands out answers by number; the numbers are the digits of a counter, so that counting up walks
/// through all sequences. Answers beyond the digits are plain skips.
class CountingConflicts : public ConflictDialogs {
public:
    std::vector<std::size_t> digits;
    std::vector<ConflictStep> given;

    ConflictReply askTransfer(const ConflictQuestion &) override
    {
        const std::size_t at = given.size();
        ConflictStep step = at < digits.size() ? allSteps()[digits[at]] : ConflictStep {};
        if (step.newName == u"free"_s) {
            step.newName = u"free%1"_s.arg(at);
        }
        given.push_back(step);
        return { step.answer, step.all };
    }
    std::optional<QString> askNewName(const QString &) override { return given.back().newName; }
};

/// The rules, told once more: what the given answers make of a batch.
class Rules {
public:
    Rules(bool upload, std::vector<ConflictStep> answers)
        : m_upload(upload)
        , m_answers(std::move(answers))
    {
    }

    /// @param conflicts  whether each item stands at its target
    std::vector<qint64> batch(const std::vector<bool> &conflicts, qint64 existing)
    {
        std::vector<qint64> result;
        for (const bool conflict : conflicts) {
            result.push_back(m_skipRest ? Skipped : conflict ? item(existing) : 0);
        }
        return result;
    }
    [[nodiscard]] bool usedAll() const { return m_next == m_answers.size(); }

private:
    enum class Standing { None, Overwrite, Resume };

    qint64 item(qint64 existing)
    {
        if (m_standing != Standing::None) {
            return m_upload && m_standing == Standing::Resume ? existing : 0;
        }
        ConflictStep last = dialogs();
        if (!m_upload && last.answer == ConflictAnswer::Rename) {
            last = dialogs(); // a download asks once more after a cancelled name
        }
        const bool skip
            = last.answer == ConflictAnswer::Skip || last.answer == ConflictAnswer::Rename;
        m_skipRest = skip && last.all;
        if (!skip && last.all) {
            m_standing
                = last.answer == ConflictAnswer::Resume ? Standing::Resume : Standing::Overwrite;
        }
        return skip ? Skipped : last.answer == ConflictAnswer::Resume ? existing : 0;
    }
    /// The dialogs up to an answer that ends them; a name given brings the question back.
    ConflictStep dialogs()
    {
        ConflictStep step = next();
        while (step.answer == ConflictAnswer::Rename && step.newName) {
            step = next();
        }
        return step;
    }
    ConflictStep next()
    {
        return m_next < m_answers.size() ? m_answers[m_next++] : ConflictStep {};
    }

    bool m_upload;
    std::vector<ConflictStep> m_answers;
    std::size_t m_next = 0;
    bool m_skipRest = false;
    Standing m_standing = Standing::None;
};

/// The next sequence; false after the last one. Only digits that were used are counted, so no
/// sequence is run twice.
bool countUp(std::vector<std::size_t> &digits, std::size_t used)
{
    digits.resize(std::min(used, digits.size()));
    while (!digits.empty()) {
        if (++digits.back() < allSteps().size()) {
            return true;
        }
        digits.pop_back();
    }
    return false;
}

/// A driver's view of the world: everything but the answers is fixed.
class BatchRun : public Workbench {
protected:
    static constexpr qint64 Existing = 10; ///< bytes at the target
    static constexpr qint64 Source = 20;

    void TestBody() override { }

    [[nodiscard]] static QString nameOf(std::size_t number) { return u"item%1"_s.arg(number); }

    /// The pane rows of a batch; files are never really moved.
    void prepare(bool upload, const std::vector<bool> &conflicts)
    {
        ftp.nodes = { { u"/"_s, {} } };
        ftp.addFile(u"/www/taken"_s, "x");
        QDir(root.path()).removeRecursively();
        QDir().mkpath(root.path());
        writeLocal(u"taken"_s, "x");
        for (std::size_t at = 0; at < conflicts.size(); ++at) {
            const QByteArray atHome(upload ? Source : Existing, 'l');
            const QByteArray onServer(upload ? Existing : Source, 's');
            if (upload || conflicts[at]) {
                writeLocal(nameOf(at), atHome);
            }
            if (!upload || conflicts[at]) {
                ftp.addFile(u"/www/"_s + nameOf(at), onServer);
            }
        }
        showBoth();
        shell.queue.clear();
    }
    /// Runs the batch. @return the offset of every item or Skipped
    std::vector<qint64> run(bool upload, std::size_t items, ConflictDialogs &dialogs)
    {
        struct NoDisplay : ProgressDisplay {
            void beginBatch() override { }
            void setMaximumFor(qint64) override { }
            void setValue(qint64) override { }
            void finish() override { }
        } display;
        DiskLook looks { ftp, shell };
        const TransferTools tools { work, display, dialogs, looks };
        QStringList names;
        for (std::size_t at = 0; at < items; ++at) {
            names.append(nameOf(at));
        }
        (upload ? local : remote).select(names);
        if (upload) {
            TransferCommands(tools).cmd_upload_Click();
        } else {
            TransferCommands(tools).cmd_download_Click();
        }
        return offsets(upload, items);
    }
    [[nodiscard]] std::vector<qint64> offsets(bool upload, std::size_t items) const
    {
        std::vector<qint64> result(items, Skipped);
        const QString word = upload ? u"PUT"_s : u"GET"_s;
        for (const QString &command : ftp.commandsOf(word)) {
            for (std::size_t at = 0; at < items; ++at) {
                if (command.contains(nameOf(at) + u' ')) {
                    const auto rest = command.mid(command.lastIndexOf(u'@') + 1);
                    result[at] = rest.left(rest.indexOf(u' ')).toLongLong();
                }
            }
        }
        return result;
    }
};

std::string describe(const std::vector<ConflictStep> &steps)
{
    std::string text;
    for (const ConflictStep &step : steps) {
        text += " " + std::to_string(static_cast<int>(step.answer)) + (step.all ? "A" : "")
            + (step.newName ? "=" + step.newName->toStdString() : "");
    }
    return text;
}

} // namespace

class ConflictTable : public BatchRun, public ::testing::WithParamInterface<std::tuple<bool, int>> {
protected:
    void TestBody() override { }
};

TEST_P(ConflictTable, EverySequenceOfAnswersEndsAsTheRulesSay)
{
    const auto [upload, shape] = GetParam();
    // Bits of shape: which of the three items stand at the target; two items are shape 8 and up.
    std::vector<bool> conflicts;
    for (int at = 0; at < (shape >= 8 ? 2 : 3); ++at) {
        conflicts.push_back((shape >> at & 1) != 0);
    }
    std::vector<std::size_t> digits(shape >= 8 ? 3 : 2, 0);
    const std::size_t length = digits.size();
    int runs = 0;
    for (bool more = true; more; ++runs) {
        CountingConflicts dialogs;
        dialogs.digits = digits;
        prepare(upload, conflicts);
        const auto actual = run(upload, conflicts.size(), dialogs);
        Rules rules(upload, dialogs.given);
        ASSERT_EQ(actual, rules.batch(conflicts, Existing)) << describe(dialogs.given);
        ASSERT_TRUE(rules.usedAll()) << "asked too often:" << describe(dialogs.given);
        ASSERT_EQ(shell.queue.size(),
                  std::count_if(actual.begin(), actual.end(), [](qint64 at) { return at >= 0; }))
            << describe(dialogs.given);
        ASSERT_TRUE(ftp.has(u"/www/taken"_s) && readLocal(u"taken"_s) == "x");
        more = countUp(digits, dialogs.given.size());
        digits.resize(more ? length : 0, 0);
    }
    EXPECT_GE(runs, static_cast<int>(allSteps().size()));
}

INSTANTIATE_TEST_SUITE_P(Batches, ConflictTable,
                         ::testing::Combine(::testing::Bool(),
                                            ::testing::Values(3, 5, 7, 9, 10, 11)));
