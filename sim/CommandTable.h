#pragma once

#include "Command.h"
#include "Reply.h"

#include <QHash>
#include <QSet>
#include <functional>
#include <initializer_list>

// Every command the register knows, by its code (and sub-code for "&", ","
// and "\"), with the forms a driver sends it in. The register counts the
// fields of a command against those forms before it looks at anything else.
class CommandTable {
public:
    using Handler = std::function<Reply(Command&)>;

    // forms: the command as sent, e.g. "d/1" and "d/1/"; all of one code.
    void add(std::initializer_list<const char*> forms, Handler handler);

    // Refuses an unknown code (06) or a wrong number of fields (01) itself.
    Reply run(Command& command) const;

    // The text is a whole command: it has the fields of the longest form of
    // its code and ends with the "/" that closes that form. A shorter form of
    // a code with a longer one, or a form that ends without "/", could still
    // be the start of a longer command, so it is never known whole.
    bool isWhole(const QString& text) const;

private:
    struct Entry {
        QSet<int> fieldCounts;
        int closedLongest = 0; // fields of the longest form when it ends with "/", else 0
        Handler handler;
    };
    static QString keyOf(const QStringList& fields);

    QHash<QString, Entry> entries_;
};
