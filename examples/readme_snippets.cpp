// Compiles every ```cpp block of README.md (extracted by
// cmake/ExtractReadmeSnippets.cmake into one function each), so the README's
// examples break the build when the API they show changes. What the snippets
// take as given from the surrounding application is declared here.
#include <KvBase.h>

#include <QCoreApplication>
#include <QDomDocument>
#include <QJsonObject>
#include <QLineEdit>
#include <QRegularExpression>

#include <memory>
#include <vector>

namespace {

class MyLiveLog : public ILogTracer
{
public:
    void SendDataTrace(QString) override {}
    void ReportException(QString) override {}
    bool IsOpen() override { return false; }
};

class MyMessageBox : public IMessageDialog
{
public:
    int ShowText(const QString&, unsigned char, bool, int, bool, bool) override { return 0; }
    int ShowException(const KvException&, unsigned char, bool, int, bool, bool) override { return 0; }
    void ShowMessageList() override {}
    void PostException(KvException&, unsigned char, bool, int, bool) override {}
    void PostText(const QString&, unsigned char, bool, int, bool) override {}
};

enum ReceiverChange
{
    FrequencyChanged = 1
};

void show(const QString&) {}
void tuneTo(unsigned long) {}
void saveState() {}
void fail(const QString&) {}
void deny(const QString&, const QString&) {}
void use(double, double) {}

const int divisor = 1;
const QByteArray key("secret");
QObject* const slider = nullptr;
QObject* const receiver = nullptr;
const QByteArray jwksDocument("{\"keys\":[]}");
const QByteArray bearerToken;
const QByteArray privateKeyPem;
const QJsonObject claims;

} // namespace

#include "readme_snippets.inc"

// Only compiled and linked, never run: the snippets need the application
// around them.
int main()
{
    return readmeSnippets.empty() ? 1 : 0;
}
