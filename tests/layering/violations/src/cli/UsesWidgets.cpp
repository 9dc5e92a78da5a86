#include "view/ui/frmLayout.h"
