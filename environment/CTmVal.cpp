#include "environment/CTmVal.h"

// Every member of the tide table's list, for hosts that link to it.
template class CList_Mgd<CTmVal>;
