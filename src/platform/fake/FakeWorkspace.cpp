#include "platform/fake/FakeWorkspace.h"
