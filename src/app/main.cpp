#include <QCoreApplication>
#include <cstdio>

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    std::printf("kerbano %s\n", KERBANO_VERSION);
    return 0;
}
