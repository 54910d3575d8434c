// What options do at the moment when they are met.
#pragma once

/// Has the options call their functions from here on.
void install_option_actions();
/// Enters the names of --export and --import, once it is known that these options stand.
void enter_exports_and_imports();
