/* The text of the simulator's property store (<state>/properties).
 *
 * Each property is one line "key=value".  A key or value may hold any
 * byte: a backslash, a newline, a carriage return, an '=' and the other
 * control bytes are written as escapes (\\, \n, \r, \=, \xHH), so that a
 * value with a newline cannot turn into a second property after a restart
 * and a key with '=' keeps its '='.  The first line names the format; a
 * file without it was written before escapes existed and is read as it
 * always was (the key up to the first '=', the rest of the line). */
#ifndef MODEMD_PROPERTY_FILE_H
#define MODEMD_PROPERTY_FILE_H

#include <map>
#include <string>

namespace modemd {

std::string encode_properties(const std::map<std::string, std::string> &props);
void decode_properties(const std::string &text, std::map<std::string, std::string> *props);

}  // namespace modemd

#endif
