#include "Application/Program.h"

int main(int argc, char *argv[])
{
    return tembra::runProgram(argc, argv);
}
