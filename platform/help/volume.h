// Help volumes: directories with one file per topic, LOCATION.topic, below the directory that the
// environment variable TESSALY_HELP names, or the installation's share/help. Files are read when
// they are shown, so a changed file needs no restart.
#pragma once

#include "topic.h"

inline constexpr const char* HELP_HOME = "_hometopic"; // the topic that lists the contents

struct HELP_ENTRY { // a row of the contents or the index
    std::string title;
    std::string location; // empty: a heading
};

// The topic at a location, with what it includes. A location that does not exist gives a topic that
// says so, and false; an empty one is the home topic. What is missing or malformed is logged.
bool help_load(const std::string& volume, const std::string& location, HELP_TOPIC* topic);
// All topics but the home topic, by title.
std::vector<HELP_ENTRY> help_index(const std::string& volume);
// The headings and links of the home topic.
std::vector<HELP_ENTRY> help_contents(const std::string& volume);
