#ifndef KVBASE_TESTS_ERRORHANDLING_RECORDERS_H
#define KVBASE_TESTS_ERRORHANDLING_RECORDERS_H

// Stand-ins for the application's message dialog and live log: each call is
// recorded as one line of its name and arguments.

#include "errorhandling/errorhandler.h"

#include <QStringList>
#include <QVariant>

struct Recorder
{
    QStringList calls;
    template <typename... Args>
    void record(const char* call, const Args&... args)
    {
        QStringList line{QLatin1String(call)};
        (line << ... << QVariant(args).toString());
        calls << line.join(QLatin1Char(' '));
    }
};

struct RecordingDialog : IMessageDialog, Recorder
{
    int ShowText(const QString& t, unsigned char l, bool a, int n, bool b, bool c) override
    {
        return record("show", t, l, a, n, b, c), 17;
    }
    int ShowException(const KvException& e, unsigned char l, bool a, int n, bool b, bool c) override
    {
        return record("show exception", e.GetErrorReason(), l, a, n, b, c), 23;
    }
    void ShowMessageList() override {}
    void PostException(KvException& e, unsigned char l, bool a, int n, bool b) override
    {
        record("post exception", e.GetErrorReason(), l, a, n, b);
    }
    void PostText(const QString& t, unsigned char l, bool a, int n, bool b) override
    {
        record("post", t, l, a, n, b);
    }
};

struct RecordingTracer : ILogTracer
{
    QStringList calls;
    bool open = true;
    void SendDataTrace(QString text) override { calls << text; }
    void ReportException(QString) override {}
    bool IsOpen() override { return open; }
};

#endif
