// What options do at the moment when they are met.
#pragma once

/// Has the options call their functions from here on.
void install_option_actions();
