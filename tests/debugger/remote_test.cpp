#include "debugger/remote.h"

#include "cgenie/memory/memory.h"
#include "core/machine.h"
#include "z80/z80.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <numeric>
#include <sstream>

namespace {

/// At 4300: im 1; ld sp,5000h; ld hl,1234h; ld bc,5678h; ld de,9abch; ld a,2ah; or a; exx;
/// ex af,af'; ld ix,1357h; ld iy,2468h; ld a,11h; ld i,a; 431F: ld (4400h),a; inc a;
/// ld a,(4400h); jr 431fh. What it leaves was worked out by hand from the processor's data sheet.
constexpr char CLIENTS_PROGRAM[] = "ed5631005021341201785611bc9a3e2ab7d908dd215713fd2168243e11"
                                   "ed473200443c3a004418f7";

std::string packet(const std::string& data) {
    char digits[3];
    const auto sum = uint8_t(std::accumulate(data.begin(), data.end(), 0));
    std::snprintf(digits, sizeof digits, "%02x", unsigned(sum));
    return "$" + data + "#" + digits;
}

/// A machine with the program, and a client.
class Remote : public testing::Test {
protected:
    void SetUp() override {
        z80_state = {};
        machine_init();
        std::ranges::copy(bytes_of_hex(CLIENTS_PROGRAM).value_or(""), memory + 0x4300);
        z80_state.af_alt = 0x0102;
        z80_state.bc_alt = z80_state.de_alt = z80_state.hl_alt = 0x0304;
        z80_state.pc = 0x4300;
        history_start({});
        debugger_start({.let_run = [this](bool runs) { machine_runs = runs; }});
        client.emplace();
        settle();
    }
    void TearDown() override {
        client.reset();
        debugger_end();
        history_stop();
    }
    /// Turns as the shell does.
    void settle(int frames = 20) {
        for (client->turn(); debugger_turn() || (!debugger_stands() && frames-- > 0);
             client->turn()) {
            if (!machine_runs || debugger_stands() || machine_run() != MACHINE_FRAME) continue;
            history_frame_ran();
            debugger_frame_ran();
        }
        client->turn();
    }
    /// What comes back, byte by byte.
    std::string raw(std::string_view bytes) {
        client->take(bytes);
        settle();
        return std::exchange(client->output(), {});
    }
    /// The answer without its frame, which has to be right.
    std::string ask(const std::string& data) {
        const std::string came = raw(packet(data));
        if (came == "+") return "(none)";
        const std::string answer = came.substr(std::min<size_t>(came.size(), 2));
        const std::string inside = answer.substr(0, answer.find('#'));
        EXPECT_EQ(came, "+" + packet(inside)) << data;
        return inside;
    }

    bool machine_runs = true;
    std::optional<RemoteSession> client;
};

/// What the client says and the answer, "-" for an empty one. Every command is there.
const char* const exchanges = R"(
vMustReplyEmpty -  Hg0 OK  qTStatus -  ? T020a:ffff;0b:0043;  qfThreadInfo m1  qsThreadInfo l
qC QC1  T1 OK  T2 E01  qAttached 1  qSymbol:: OK  vCont? vCont;c;C;s;S;t
qSupported:multiprocess+;swbreak+;hwbreak+
PacketSize=4000;qXfer:features:read+;qXfer:memory-map:read+;QStartNoAckMode+;ReverseStep+;)"
                              R"(ReverseContinue+;swbreak+;hwbreak+;vContSupported+
s T050a:ffff;0b:0243;  vCont;s:1;c T050a:0050;0b:0543;  S05 T050a:0050;0b:0843;
Z0,431f,1 OK  Z0,431f,1 OK  c T05swbreak:;0a:0050;0b:1f43;  z0,431f,1 OK
g 0211040304030403282a7856bc9a34125713682400501f43111100011111
p4 282a  pb 1f43  pf 01  p10 1111  p11 E01
Z1,4323,1 OK  vCont;c T05hwbreak:;0a:0050;0b:2343;  z1,4323,1 OK  z1,4323,1 OK  m4400,1 11
Z2,43ff,2 OK  c T05watch:4400;0a:0050;0b:2243;  bs T050a:0050;0b:1f43;  s T050a:0050;0b:2243;
bs T050a:0050;0b:1f43;  c T05watch:4400;0a:0050;0b:2243;  bc T05watch:4400;0a:0050;0b:1f43;
z2,43ff,2 OK  bc T05replaylog:begin:;0a:ffff;0b:0043;  c T05replaylog:end:;0a:0050;0b:2243;
Z3,4400,1 OK  C05;431f T05rwatch:4400;0a:0050;0b:2643;  z3,4400,1 OK
Z4,4400,1 OK  c T05awatch:4400;0a:0050;0b:2243;  z4,4400,1 OK
Z2,ffff,10 OK  z2,ffff,10 OK  Z5,4400,1 E01  Z0,10000,1 E01  Z0,4300 E01
Pb=1f43 OK  P10=3422 OK  pc 22  pd 34  Pe=03 OK  pe 03  Pe=04 E01  Pf=03 E01  P0=11 E01
P1=111100 E01  P11=0000 E01  M4500,3:0a7dff OK  m4500,4 0a7dff00  X4503,0: OK  M4500,2:0a E01
M4500,1:0g E01  M3fff,2:0102 E01  Mfffe,3:010203 E01  mffff,10 ff  m10000,1 E01  m,1 E01
m4000 E01  m4500,0 -  G00 E01  G112233445566778899aabbccddeeff0010203040506070 E01
G112233445566778899aabbccddeeff001020304050607080 OK
g 112233445566778899aabbccddeeff001020304050607080223403013422
G000000000000000000000000000000000000000050001f430a0b00020b0a OK  p10 0b0a  pa 5000
qXfer:features:read:other.xml:0,40 E00  qXfer:memory-map:read::fff,1 l  qRcmd,zz E01
vCont;t T05awatch:4400;0a:5000;0b:1f43;  vCont;r1,2 E01  R00 -  D OK)";

TEST_F(Remote, EveryCommandIsAnswered) {
    std::string said, answer;
    for (std::istringstream words(exchanges); words >> said >> answer;) {
        EXPECT_EQ(ask(said), answer == "-" ? "" : answer) << said;
    }
    EXPECT_TRUE(client->is_over());
}

TEST_F(Remote, DescribesItself) {
    EXPECT_EQ(ask("qXfer:features:read:target.xml:16,41"),
              "m<!DOCTYPE target SYSTEM \"gdb-target.dtd\">\n<target version=\"1.0\">\n");
    std::string map = ask("qXfer:memory-map:read::0,ffff");
    for (size_t at = map.find('\n'); at != std::string::npos; at = map.find('\n')) map.erase(at, 1);
    EXPECT_EQ(map, "l<?xml version=\"1.0\"?><memory-map>"
                   "<memory type=\"rom\" start=\"0x0\" length=\"0x4000\"/>"
                   "<memory type=\"ram\" start=\"0x4000\" length=\"0x4000\"/>"
                   "<memory type=\"ram\" start=\"0x8000\" length=\"0x4000\"/>"
                   "<memory type=\"rom\" start=\"0xc000\" length=\"0x3000\"/>"
                   "<memory type=\"ram\" start=\"0xf000\" length=\"0x1000\"/>"
                   "<memory type=\"ram\" start=\"0x10000\" length=\"0xffffffffffff0000\"/>"
                   "</memory-map>");
    EXPECT_EQ(ask("M8000,1:00"), "OK");
    machine_cfg[CUSTOM_CONFIGURATION].ram_size = 0; // 16 KB
    EXPECT_EQ(ask("M8000,1:00"), "E01");
    machine_cfg[CUSTOM_CONFIGURATION].ram_size = 1;
}

/// Bytes as they come: in pieces, damaged, too many, and without acknowledgement.
TEST_F(Remote, BytesAreAPacketOrNone) {
    EXPECT_EQ(raw("++$q"), "");
    EXPECT_EQ(raw("C#b4"), "+$QC1#c5");
    EXPECT_EQ(raw("-"), "$QC1#c5");
    EXPECT_EQ(raw("$qC#b5x"), "-");
    EXPECT_EQ(raw("$qC#zz$$qC#B4"), "-+$QC1#c5");
    EXPECT_EQ(raw("$" + std::string(LONGEST_REMOTE_PACKET + 1, 'm') + "#00"), "+$E01#a6");
    EXPECT_EQ(raw("$QStartNoAckMode#b0"), "+$OK#9a");
    // "}" goes before a byte with bit 5 turned over: # $ } 03
    EXPECT_EQ(raw("$X4500,4:}\3}\4}]\3#00$m4500,4#00"), "$OK#9a" + packet("23247d03"));
    EXPECT_EQ(remote_packet("a*}$#"), packet("a}\n}]}\4}\3"));
    EXPECT_EQ(raw("$m0,10000#00").size(), 4 + 2 * 0x10000u);
}

/// What DeZog sends: no query, Ctrl-C together with a command, and a stop that it takes by itself.
TEST_F(Remote, AFrontEndMayAskForLittle) {
    client->take("$c#63");
    settle(2);
    EXPECT_EQ(std::exchange(client->output(), {}), "+");
    client->take("\3$p0b#02");
    client->turn();
    debugger_turn();
    const std::string stop = std::exchange(client->output(), {});
    EXPECT_TRUE(stop.starts_with("$T020a:0050;0b:") && stop.size() == 23) << stop;
    settle();
    EXPECT_EQ(std::exchange(client->output(), {}).substr(0, 2), "+$");
    EXPECT_EQ(raw("$k#6B"), "+");
    EXPECT_TRUE(client->is_over() && client->is_killed());
}

TEST_F(Remote, MonitorCommandsAreTheDebuggers) {
    const auto say = [this](const std::string& line) {
        return raw(packet("qRcmd," + hex_of(line)));
    };
    EXPECT_NE(say("help").find(hex_of("\nback ")), std::string::npos);
    const std::string dump = say("dump 4300 4000"); // in several packets
    EXPECT_TRUE(std::ranges::count(dump, 'O') > 2 && dump.ends_with("$OK#9a")) << dump;
    EXPECT_NE(say("to 4311").find(hex_of("4311")), std::string::npos); // behind the stop
    EXPECT_EQ(ask("pb"), "1143");
}

/// The machine runs on from the present, without what the client had armed.
TEST_F(Remote, AClientLeavesNothingBehind) {
    EXPECT_EQ(ask("Z0,4322,1"), "OK");
    EXPECT_EQ(ask("c"), "T050a:0050;0b:2243;");
    client.emplace(); // the next one
    EXPECT_TRUE(breakpoints().empty());
    while (!remote_let_go()) debugger_turn();
    EXPECT_TRUE(machine_runs && !debugger_stands());
    client->take("GET / HTTP/1.1\r\n\r\n$k#6b");
    client->turn();
    EXPECT_TRUE(client->is_over() && !client->is_killed() && client->output().empty());
}

} // namespace
