#include "app/ui/Application.h"

int main(int argc, char *argv[])
{
    return VarnoMain(argc, argv);
}
