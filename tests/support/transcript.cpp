#include "transcript.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/wait.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>

#include "sim_fixture.h"

namespace {

/* How long "! wait-up" waits for the modem. */
constexpr int k_poll_ms = 5000;

/* One expected line: exact, with '*' wildcards, or any run of lines. */
struct expect_line {
    enum kind_t { exact, glob, any } kind;
    std::string text;
};

struct step {
    enum kind_t { run, control, restart, wait_up, file } kind;
    size_t line = 0;       /* where it starts in the file */
    std::string command;   /* the command or control request as written */
    std::vector<expect_line> out, err, syslog, logcat;
    bool out_no_eol = false;
    std::string status = "0";
    size_t end_line = 0;   /* last line of the step's expectations */
};

struct transcript {
    bool simulator = true;
    bool needs_captures = false;
    std::vector<std::string> sim_args;
    std::vector<expect_line> ignored; /* output lines left out of every comparison */
    std::vector<step> steps;
    std::vector<std::string> lines; /* the file, for rewriting */
};

bool glob_match(const char *pattern, const char *text)
{
    if (*pattern == '\0') return *text == '\0';
    if (*pattern == '*') {
        for (const char *t = text;; t++) {
            if (glob_match(pattern + 1, t)) return true;
            if (*t == '\0') return false;
        }
    }
    return *text == *pattern && glob_match(pattern + 1, text + 1);
}

bool line_matches(const expect_line &e, const std::string &line)
{
    return e.kind == expect_line::exact ? e.text == line : glob_match(e.text.c_str(), line.c_str());
}

/* Whether `lines` from `j` on are exactly what `want` from `i` on says. */
bool lines_match(const std::vector<expect_line> &want, size_t i, const std::vector<std::string> &lines, size_t j)
{
    if (i == want.size()) return j == lines.size();
    if (want[i].kind == expect_line::any) {
        for (size_t k = j; k <= lines.size(); k++) {
            if (lines_match(want, i + 1, lines, k)) return true;
        }
        return false;
    }
    return j < lines.size() && line_matches(want[i], lines[j]) && lines_match(want, i + 1, lines, j + 1);
}

/* Whether `want` appears in `messages` in order, others between. */
bool messages_hold(const std::vector<expect_line> &want, const std::vector<std::string> &messages)
{
    size_t j = 0;
    for (const expect_line &e : want) {
        while (j < messages.size() && !line_matches(e, messages[j])) j++;
        if (j++ == messages.size()) return false;
    }
    return true;
}

std::vector<std::string> split_lines(const std::string &text, bool *no_eol = nullptr)
{
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string l; std::getline(in, l);) lines.push_back(l);
    if (no_eol) *no_eol = !text.empty() && text.back() != '\n';
    return lines;
}

/* The words of a command line; '...' keeps spaces. */
std::vector<std::string> split_words(const std::string &s)
{
    std::vector<std::string> words;
    std::string w;
    bool quoted = false, any = false;
    for (char c : s) {
        if (c == '\'') {
            quoted = !quoted;
            any = true;
        } else if (c == ' ' && !quoted) {
            if (any) words.push_back(w);
            w.clear();
            any = false;
        } else {
            w += c;
            any = true;
        }
    }
    if (any) words.push_back(w);
    return words;
}

std::string substitute(std::string s, const std::map<std::string, std::string> &vars)
{
    for (const auto &kv : vars) {
        for (size_t at; (at = s.find(kv.first)) != std::string::npos;) s.replace(at, kv.first.size(), kv.second);
    }
    return s;
}

bool starts(const std::string &s, const char *prefix)
{
    return s.rfind(prefix, 0) == 0;
}

/* Adds an expected line to `into` when `line` is one ("<tag>| text",
 * "<tag>~ text", "<tag>..."). */
bool take_expect(const std::string &line, const std::string &tag, std::vector<expect_line> *into)
{
    if (!starts(line, tag.c_str())) return false;
    std::string rest = line.substr(tag.size());
    if (rest == "...") {
        into->push_back({expect_line::any, ""});
    } else if (rest == "|" || rest == "~") {
        into->push_back({rest == "|" ? expect_line::exact : expect_line::glob, ""});
    } else if (starts(rest, "| ") || starts(rest, "~ ")) {
        into->push_back({rest[0] == '|' ? expect_line::exact : expect_line::glob, rest.substr(2)});
    } else {
        return false;
    }
    return true;
}

/* Takes `line` into the step's expectations when it is one. */
bool is_expectation(const std::string &line, step *s)
{
    if (line == "(no newline at end)") {
        s->out_no_eol = true;
        return true;
    }
    if (starts(line, "? ")) {
        s->status = line.substr(2);
        return true;
    }
    return take_expect(line, "logcat", &s->logcat) || take_expect(line, "log", &s->syslog) ||
           take_expect(line, "2", &s->err) || take_expect(line, "", &s->out);
}

bool parse(const std::string &path, transcript *t)
{
    std::ifstream in(path);
    if (!in) {
        ADD_FAILURE() << "cannot read " << path;
        return false;
    }
    for (std::string l; std::getline(in, l);) t->lines.push_back(l);
    for (size_t n = 1; n <= t->lines.size(); n++) {
        const std::string &l = t->lines[n - 1];
        step *cur = t->steps.empty() ? nullptr : &t->steps.back();
        if (cur && is_expectation(l, cur)) {
            cur->end_line = n;
        } else if (l.empty() || l[0] == '#') {
        } else if (starts(l, "$ ") || starts(l, "> ") || starts(l, "! ")) {
            step s;
            s.line = s.end_line = n;
            s.command = l.substr(l.find(' ') + 1);
            if (l[0] == '$') {
                s.kind = step::run;
            } else if (l[0] == '>') {
                s.kind = step::control;
            } else if (l == "! restart") {
                s.kind = step::restart;
            } else if (starts(l, "! wait-up ")) {
                s.kind = step::wait_up;
                s.command = l.substr(10);
            } else if (starts(l, "! file ") && l.find("..") == std::string::npos) {
                s.kind = step::file;
                s.command = l.substr(7);
            } else {
                ADD_FAILURE() << path << ":" << n << ": no such step: " << l;
                return false;
            }
            t->steps.push_back(s);
        } else if (t->steps.empty() && take_expect(l, "ignore", &t->ignored)) {
        } else if (t->steps.empty() && starts(l, "simulator: ")) {
            t->simulator = l != "simulator: off";
            if (t->simulator) t->sim_args = split_words(l.substr(11));
        } else if (t->steps.empty() && l == "requires: captures") {
            t->needs_captures = true;
        } else {
            ADD_FAILURE() << path << ":" << n << ": not a transcript line: " << l;
            return false;
        }
    }
    return true;
}

std::string program_path(const std::string &name)
{
    static const std::map<std::string, std::string> programs = {
        {"rlk", RLK_BINARY},
        {"rlk-mbn", RLK_MBN_BINARY},
        {"rlk-replay", RLK_REPLAY_BINARY},
        {"ext_probe", EXT_PROBE_BINARY},
        {"platform_probe", PLATFORM_PROBE_BINARY},
        {"mbn_retry_probe", MBN_RETRY_PROBE_BINARY},
    };
    auto it = programs.find(name);
    return it == programs.end() ? "" : it->second;
}

std::string status_text(int status)
{
    if (WIFEXITED(status)) return std::to_string(WEXITSTATUS(status));
    if (WIFSIGNALED(status)) return "signal " + std::to_string(WTERMSIG(status));
    return "none";
}

std::string render(const std::vector<std::string> &lines, const char *tag)
{
    std::string s;
    for (const std::string &l : lines) s += std::string(tag) + (l.empty() ? "" : " ") + l + "\n";
    return s;
}

/* An output line as an expectation: run-to-run values (addresses of nine
 * or more hex digits, UTC times "2026-11-26T05:01:02Z") become '*' in a
 * "~" line. */
std::string expectation_of(const std::string &line, const char *tag)
{
    std::string e;
    bool varies = false;
    for (size_t i = 0; i < line.size();) {
        size_t hex = starts(line.substr(i, 2), "0x") ? line.find_first_not_of("0123456789abcdef", i + 2) : i;
        if (hex == std::string::npos) hex = line.size();
        bool time = line.size() - i >= 20 && line[i + 4] == '-' && line[i + 10] == 'T' && line[i + 19] == 'Z' &&
                    isdigit(static_cast<unsigned char>(line[i]));
        if (hex - i >= 11 || time) {
            e += '*';
            i = time ? i + 20 : hex;
            varies = true;
        } else {
            e += line[i++];
        }
    }
    std::string head = std::string(tag) + (varies ? "~" : "|");
    return e.empty() ? head : head + " " + e;
}

/* The expectation lines of a run that printed `out` (lines left out
 * already dropped), `err` and ended with `status`. */
std::vector<std::string> rewrite(const std::vector<std::string> &out, bool no_eol, const std::vector<std::string> &err,
                                 const std::string &status, const step &s)
{
    std::vector<std::string> lines;
    for (const std::string &l : out) lines.push_back(expectation_of(l, ""));
    if (no_eol) lines.push_back("(no newline at end)");
    for (const std::string &l : err) lines.push_back(expectation_of(l, "2"));
    if (status != "0") lines.push_back("? " + status);
    for (const expect_line &e : s.syslog) lines.push_back((e.kind == expect_line::exact ? "log| " : "log~ ") + e.text);
    for (const expect_line &e : s.logcat) lines.push_back((e.kind == expect_line::exact ? "logcat| " : "logcat~ ") + e.text);
    return lines;
}

std::vector<std::string> message_texts(const std::vector<log_line> &lines)
{
    std::vector<std::string> m;
    for (const log_line &l : lines) m.push_back(l.text.size() && l.text.back() == '\n' ? l.text.substr(0, l.text.size() - 1) : l.text);
    return m;
}

}  // namespace

std::vector<std::string> find_transcripts(const std::string &dir)
{
    std::vector<std::string> found;
    for (const auto &e : std::filesystem::recursive_directory_iterator(dir)) {
        if (e.is_regular_file() && e.path().extension() == ".t") found.push_back(e.path().string());
    }
    std::sort(found.begin(), found.end());
    return found;
}

void run_transcript(const std::string &path)
{
    transcript t;
    if (!parse(path, &t)) return;
    if (t.needs_captures && !std::filesystem::exists(RLK_CAPTURES_DIR)) {
        GTEST_SKIP() << "no sample captures at " << RLK_CAPTURES_DIR;
    }
    sim_instance sim;
    sim.set_extra_args(t.sim_args);
    ASSERT_TRUE(t.simulator ? sim.start() : sim.start_without_simulator()) << path;
    const char *update = getenv("RLK_GOLDEN_UPDATE");
    bool rewriting = update && *update == '1';
    std::vector<std::pair<const step *, std::vector<std::string>>> rewrites;
    for (const step &s : t.steps) {
        std::string where = path + ":" + std::to_string(s.line);
        if (s.kind == step::restart) {
            ASSERT_TRUE(sim.restart()) << where;
            continue;
        }
        if (s.kind == step::control) {
            std::string answer = sim.ctl(s.command);
            bool ok = answer == "ok" || starts(answer, "ok ") || starts(answer, "ok\n");
            std::vector<std::string> data = split_lines(ok ? answer.substr(std::min<size_t>(3, answer.size())) : answer);
            if (answer == "ok ") data = {""};
            /* An error answer passes only where the lines expect it. */
            EXPECT_TRUE(s.out.empty() ? ok : lines_match(s.out, 0, data, 0)) << where << ": " << s.command << " -> "
                                                                             << answer;
            continue;
        }
        if (s.kind == step::wait_up) {
            /* The modem is back from its N-th restart with every service up. */
            const long long ups = atoll(s.command.c_str());
            EXPECT_TRUE(poll_until(
                [&] {
                    return atoll(sim.ctl_ok("counter get ext.restart.up").c_str()) >= ups &&
                           sim.ctl_ok("services").find(" down ") == std::string::npos;
                },
                k_poll_ms))
                << where << ": the modem did not come back";
            continue;
        }
        if (s.kind == step::file) {
            std::ifstream f(sim.state_dir() + "/" + s.command);
            std::vector<std::string> content = split_lines(std::string(std::istreambuf_iterator<char>(f), {}));
            EXPECT_TRUE(f && lines_match(s.out, 0, content, 0)) << where << ": state file " << s.command << ":\n"
                                                               << render(content, "|");
            continue;
        }
        const std::map<std::string, std::string> vars = {
            {"$DIR", sim.dir()}, {"$CAPTURES", RLK_CAPTURES_DIR}, {"$HERE", path.substr(0, path.rfind('/'))}};
        std::vector<std::string> words = split_words(substitute(s.command, vars)), env;
        while (!words.empty() && words[0].find('=') != std::string::npos) {
            env.push_back(words[0]);
            words.erase(words.begin());
        }
        std::string binary = words.empty() ? "" : program_path(words[0]);
        if (binary.empty()) {
            ADD_FAILURE() << where << ": no such program: " << s.command;
            continue;
        }
        words.erase(words.begin());
        rlk_run r = sim.run_program(binary, words, env);
        bool no_eol = false;
        std::vector<std::string> out = split_lines(r.out, &no_eol), err = split_lines(r.err);
        out.erase(std::remove_if(out.begin(), out.end(),
                                 [&](const std::string &l) {
                                     return std::any_of(t.ignored.begin(), t.ignored.end(),
                                                        [&](const expect_line &e) { return line_matches(e, l); });
                                 }),
                  out.end());
        const std::string status = status_text(r.status);
        bool output_ok = lines_match(s.out, 0, out, 0) && no_eol == s.out_no_eol && lines_match(s.err, 0, err, 0) &&
                         status == s.status;
        if (!output_ok && rewriting) {
            rewrites.push_back({&s, rewrite(out, no_eol, err, status, s)});
        } else {
            EXPECT_TRUE(output_ok) << where << ": $ " << s.command << "\nprinted (status " << status
                                   << (no_eol ? ", no newline at end" : "") << "):\n"
                                   << render(out, "|") << render(err, "2|");
        }
        EXPECT_TRUE(messages_hold(s.syslog, message_texts(r.syslog)))
            << where << ": system log of $ " << s.command << ":\n" << render(message_texts(r.syslog), "log|");
        EXPECT_TRUE(messages_hold(s.logcat, message_texts(r.logcat)))
            << where << ": Android log of $ " << s.command << ":\n" << render(message_texts(r.logcat), "logcat|");
    }
    if (rewrites.empty()) return;
    /* Replace each rewritten step's expectation lines, last step first so
     * that earlier line numbers stay valid. */
    for (auto it = rewrites.rbegin(); it != rewrites.rend(); ++it) {
        const step &s = *it->first;
        t.lines.erase(t.lines.begin() + s.line, t.lines.begin() + s.end_line);
        t.lines.insert(t.lines.begin() + s.line, it->second.begin(), it->second.end());
    }
    std::ofstream f(path, std::ios::trunc);
    for (const std::string &l : t.lines) f << l << "\n";
}
