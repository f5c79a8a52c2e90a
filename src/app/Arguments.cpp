#include "Arguments.h"

namespace {
const char kUsage[] =
    "Χρήση: kerbano [--headless] [port,baud,file,time,ecrt,flags]\n"
    "       kerbano [--headless] --run ΟΝΟΜΑ [--answer ΤΙΜΗ]...\n"
    "\n"
    "  (χωρίς όρισμα)   διαβάζει το param.ini του τρέχοντος καταλόγου και περιμένει\n"
    "                   αρχεία εκτύπωσης\n"
    "  --headless       η ίδια λειτουργία χωρίς παράθυρο· η γραμμή κατάστασης\n"
    "                   τυπώνεται στην έξοδο\n"
    "  port,baud,file,time,ecrt,flags\n"
    "                   τυπώνει ένα αρχείο και τερματίζει (π.χ. com1,9600,print.txt,0,TECFP,1111111)\n"
    "  --run ΟΝΟΜΑ      βρίσκει την ταμειακή, εκτελεί τη λειτουργία του μενού με αυτό το\n"
    "                   όνομα (π.χ. Ver, xrep0, zrep021) και τερματίζει\n"
    "  --answer ΤΙΜΗ    απάντηση σε ερώτηση της λειτουργίας, με τη σειρά· σε επιλογή από\n"
    "                   λίστα ο αριθμός της γραμμής, από το 1\n"
    "  --log            καταγραφή της επικοινωνίας στο kerbanoLog.txt από την αρχή\n"
    "  --wait-limit ΔΕΥΤ\n"
    "                   με γραμμή εντολών: πόσο περιμένει μια εντολή την απασχολημένη\n"
    "                   ταμειακή πριν διακοπεί η εργασία (300· 0 χωρίς όριο)\n"
    "  --help           αυτό το κείμενο\n"
    "  --version        η έκδοση\n";

// An option that takes the argument behind it, whatever that looks like.
bool takeValue(const QStringList& args, qsizetype& i, QString& value, QString& error)
{
    if (i + 1 >= args.size()) {
        error = QStringLiteral("Λείπει η τιμή του ") + args.at(i);
        return false;
    }
    value = args.at(++i);
    return true;
}
// A whole number of seconds, 0 or more.
int seconds(const QString& value, const QString& option, QString& error)
{
    bool number = false;
    const int n = value.toInt(&number);
    if (!number || n < 0) {
        error = QStringLiteral("Λάθος τιμή του %1 : %2").arg(option, value);
        return 0;
    }
    return n;
}
} // namespace

Arguments parseArguments(const QStringList& args)
{
    Arguments out;
    QStringList rest;
    for (qsizetype i = 1; i < args.size() && out.error.isEmpty(); ++i) {
        const QString& a = args.at(i);
        QString value;
        if (a == QLatin1String("--headless"))
            out.headless = true;
        else if (a == QLatin1String("--help"))
            out.help = true;
        else if (a == QLatin1String("--version"))
            out.version = true;
        else if (a == QLatin1String("--run")) {
            if (takeValue(args, i, value, out.error))
                out.run = value;
        } else if (a == QLatin1String("--answer")) {
            if (takeValue(args, i, value, out.error))
                out.answers << value;
        } else if (a == QLatin1String("--log")) {
            out.log = true;
        } else if (a == QLatin1String("--wait-limit")) {
            if (takeValue(args, i, value, out.error))
                out.waitLimitSeconds = seconds(value, a, out.error);
        } else if (!a.startsWith(QLatin1String("--")))
            rest << a;
    }
    out.commandLine = rest.join(QLatin1Char(' '));
    if (out.error.isEmpty() && !out.run.isEmpty() && !out.commandLine.isEmpty())
        out.error = QStringLiteral("Το --run δεν συνδυάζεται με γραμμή εντολών εκτύπωσης");
    return out;
}

const char* usageText()
{
    return kUsage;
}
