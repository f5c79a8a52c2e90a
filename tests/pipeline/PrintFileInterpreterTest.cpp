#include "DataFile.h"
#include "InterpreterFixture.h"
#include "config/VatFile.h"
#include "pipeline/PrintFileColumns.h"

namespace {

const QString kCases = u"pipeline/interpreter.txt"_s;

// The cases' names: the heads of the case file's sections.
std::vector<QString> caseNames()
{
    std::vector<QString> names;
    for (const QString& line : DataLines(kCases))
        if (line.startsWith(u"== "_s))
            names.push_back(line.mid(3));
    return names;
}

// The settings of the worked receipt: descriptions, quantities and
// departments from the line, comments on, payment number from the line.
class PrintFileInterpreterTest : public InterpreterTest {
protected:
    void SetUp() override
    {
        settings.printDesc = settings.comments = settings.dirDepa = settings.quantity = u"true"_s;
        settings.printCode = u"true N"_s;
        settings.currency = u"0"_s;
        vars.JobTag = u"00417"_s;
        WriteVatsFile(dir.filePath(u"vats.dat"_s), {24.0, 13.0, 6.0, 17.0, 9.0});
    }
};

class PrintFileCase : public PrintFileInterpreterTest, public ::testing::WithParamInterface<QString> {
protected:
    QMap<QString, ScriptedLink::Answer> answers;

    // One "set name value" line of a case.
    void set(const QString& name, const QString& value)
    {
        const std::pair<const char*, QString JobSettings::*> fields[] = {
            {"quantity", &JobSettings::quantity}, {"dirDepa", &JobSettings::dirDepa},
            {"printDesc", &JobSettings::printDesc}, {"comments", &JobSettings::comments},
            {"currency", &JobSettings::currency}};
        for (const auto& [field, member] : fields)
            if (name == QLatin1String(field))
                settings.*member = value;
        if (name == u"spRet"_s)
            vars.spRet = value == u"1"_s;
        if (name == u"TableMode"_s)
            receipt.TableMode = qint16(value.toInt());
    }
    static ScriptedLink::Answer answer(const QString& statusAndReply)
    {
        return {qint16(statusAndReply.section(u'|', 0, 0).toInt()),
                statusAndReply.section(u'|', 1).replace(u"\\n"_s, u"\n"_s)};
    }
};

} // namespace

TEST_P(PrintFileCase, WalksAsItsCaseSays)
{
    QStringList lines, expected, checks;
    for (const QString& line : golden(kCases, GetParam())) {
        const QString key = line.section(u' ', 0, 0);
        const QString rest = line.mid(key.size() + 1);
        if (key == u"print"_s)
            lines << rest;
        else if (key == u"set"_s)
            set(rest.section(u' ', 0, 0), rest.section(u' ', 1));
        else if (key == u"answer"_s)
            answers.insert(rest.section(u'|', 0, 0), answer(rest.section(u'|', 1)));
        else if (key == u"queue"_s)
            link.queue.push_back(answer(rest));
        else if (key == u"card"_s)
            ASSERT_EQ(WritePayEftRecord(dir.filePath(u"payeft.dat"_s),
                                        cardRecord(qint16(rest.section(u' ', 0, 0).toInt()),
                                                   qint16(rest.section(u' ', 1).toInt()))),
                      0);
        else if (key == u"check"_s)
            checks << rest.section(u'=', 0, 0);
        if (QStringList{"send", "quiet", "result", "shown", "message", "check"}.contains(key))
            expected << line;
    }
    ASSERT_FALSE(lines.isEmpty()) << "no case " << GetParam().toStdString();
    if (!answers.isEmpty())
        link.responder = [this](const QString& command, ScriptedLink::Answer& a) {
            if (!answers.contains(command))
                return false;
            a = answers.value(command);
            return true;
        };
    run(lines);

    QStringList seen;
    for (const ScriptedLink::Sent& s : link.sent)
        seen << (s.quiet ? u"quiet "_s : u"send "_s) + s.command;
    for (const QString& line : results.lines)
        seen << u"result "_s + line;
    for (const auto& [status, text] : link.shownMessages)
        seen << u"shown %1|%2"_s.arg(status).arg(text);
    for (const auto& m : person.messages)
        seen << u"message "_s + m.text;
    const QMap<QString, int> values{{u"DiscountScope"_s, receipt.DiscountScope}, {u"PaymentDone"_s, receipt.PaymentDone},
                                    {u"zRun"_s, zRun}, {u"opens"_s, link.opens}};
    for (const QString& name : checks)
        seen << u"check %1=%2"_s.arg(name).arg(values.value(name, -1));
    for (QString& line : seen) // line breaks written as in the case file
        line.replace(u'\r', u"\\r"_s).replace(u'\n', u"\\n"_s);
    EXPECT_EQ(seen, expected);
}

INSTANTIATE_TEST_SUITE_P(Cases, PrintFileCase, ::testing::ValuesIn(caseNames()),
                         [](const ::testing::TestParamInfo<QString>& info) { return info.param.toStdString(); });

TEST_F(PrintFileInterpreterTest, FeeDepartmentsFollowTheGreekLetters)
{
    EXPECT_EQ(FeeDepartment(u"ΛΠΣM ΣΑΚΟΥΛΑ"_s, 2), 10); // Latin M, no department named
    EXPECT_EQ(FeeDepartment(u"ΣΑΚΟΥΛΑ"_s, 2), 2);
}

TEST_F(PrintFileInterpreterTest, HostileLinesAreSkippedOrCutAndSoAreLinesPastTheCounter)
{
    const QStringList sent = run({QString(10000, u'x'), u" PLU "_s + QString(10000, u'9')});
    ASSERT_EQ(sent.size(), 1);
    EXPECT_TRUE(sent.at(0).startsWith(u"3/S/999999999999999/999999999/"_s));

    // Lines beyond the sixteen-bit counter are never reached.
    QStringList lines(kMaxLines, QString());
    EXPECT_TRUE(runAfresh(lines << u" com  ΑΡΓΑ"_s).isEmpty());
}
