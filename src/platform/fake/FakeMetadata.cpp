#include "platform/fake/FakeMetadata.h"
