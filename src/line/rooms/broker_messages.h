#pragma once

#include <filesystem>

#include "line/rooms/room_messages.h"

namespace keplo {

/// The messages of the broker that broker.json of the application path names.
OpenRoomMessages BrokerMessagesOf(const std::filesystem::path& appPath);

}  // namespace keplo
