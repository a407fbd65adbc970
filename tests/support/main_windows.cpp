#include "tests/support/windows_main.h"

#include <QApplication>

int main(int argc, char **argv)
{
    return runWindowTests<QApplication>(argc, argv);
}
