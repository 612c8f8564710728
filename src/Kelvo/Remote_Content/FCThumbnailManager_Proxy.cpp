#include "FCThumbnailManager_Proxy.h"

FCThumbnailManager_Proxy::~FCThumbnailManager_Proxy() {}
