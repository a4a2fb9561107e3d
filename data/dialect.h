#pragma once

namespace tidewell {

// Which SQL dialect the statements speak: the component's DataServer property, which the
// statement builders receive with each statement.
enum class ASPDataServer : int { Access = 0, SQLServer = 1 };

}  // namespace tidewell
