#include "base/Runtime.h"
#include "app/RecentFiles.h"
