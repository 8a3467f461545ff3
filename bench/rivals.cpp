#include "bench/rivals.h"

#include <sys/resource.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>

namespace numalink {

namespace {

constexpr int gotoLabels = 20, gotoFillers = 13;
constexpr char labelNames[] = "0123456789ABCDEFGHIJ";

// Twenty labels, each a jump to the next, with lines between them that nobody reaches: some 300 in all.
std::string gotoWords() {
    std::string words = "0\\->X:";
    for (int i = 0; i < gotoLabels; i++) {
        words += std::string("\\Lbl ") + labelNames[i] + ":";
        if (i + 1 == gotoLabels) break;
        words += std::string("\\Goto") + labelNames[i + 1] + ":";
        for (int line = 0; line < gotoFillers; line++) words += "Z+1\\->Z:";
    }
    return words + "X+1\\->X:X<#\\=>\\Goto0";
}

std::string gotoBasic() {
    std::string text = "X=0\n";
    for (int i = 0; i + 1 < gotoLabels; i++) {
        text += "GOTO " + std::to_string(20 + (i + 1) * (gotoFillers + 1) * 10) + "\n";
        for (int line = 0; line < gotoFillers; line++) text += "Z=Z+1\n";
    }
    return text + "X=X+1\nIF X<# THEN GOTO 20\n";
}

std::string gotoLua() {
    std::string text = "local X, Z = 0, 0\n";
    for (int i = 0; i < gotoLabels; i++) {
        text += std::string("::L") + labelNames[i] + "::\n";
        if (i + 1 == gotoLabels) break;
        text += std::string("goto L") + labelNames[i + 1] + "\n";
        for (int line = 0; line < gotoFillers; line++) text += "Z = Z + 1\n";
    }
    return text + "X = X + 1\nif X < # then goto L0 end\nprint(X)\n";
}

const std::string gotoOurs = gotoWords(), gotoOfBasic = gotoBasic(), gotoOfLua = gotoLua();

const Contest table[] = {
    {"countingLoop",
     "#\\->N:0\\->X:\\For 1\\->I \\To N:X+I*2\\->X:\\If X>9999:\\Then 0\\->X:\\IfEnd:\\Next",
     nullptr,
     1000000,
     "N=#\nX=0\nFOR I=1 TO N\nX=X+I*2\nIF X>9999 THEN X=0\nNEXT I\n",
     {500000, 50000, 1000000},
     "X = 0\nfor I in range(1, # + 1):\n    X = X + I * 2\n    if X > 9999: X = 0\nprint(X)\n",
     "local X = 0\nfor I = 1, # do\n  X = X + I * 2\n  if X > 9999 then X = 0 end\nend\nprint(X)\n",
     3000000},
    {"mandelbrot",
     "0\\->X:\\For 1\\->R \\To #:\\For 1\\->I \\To 30:2.4I/30-1.2\\->B:\\For 1\\->J \\To 40:3J/40-2\\->A:0\\->P:0\\->Q:"
     "\\For 1\\->K \\To 20:\\If P*P+Q*Q<4:\\Then "
     "P*P-Q*Q+A\\->T:2*P*Q+B\\->Q:T\\->P:X+1\\->X:\\IfEnd:\\Next:\\Next:\\Next:"
     "\\Next",
     nullptr,
     4,
     "X=0\nFOR R=1 TO #\nFOR I=1 TO 30\nB=2.4*I/30-1.2\nFOR J=1 TO 40\nA=3*J/40-2\nP=0\nQ=0\nFOR K=1 TO 20\n"
     "S=P*P+Q*Q\nIF S>=4 THEN GOTO 160\nT=P*P-Q*Q+A\nQ=2*P*Q+B\nP=T\nX=X+1\nNEXT K\nNEXT J\nNEXT I\nNEXT R\n",
     {4, 3, 8},
     "def f():\n  X = 0\n  for R in range(#):\n   for I in range(1, 31):\n    B = 2.4*I/30-1.2\n    for J in range(1, "
     "41):\n"
     "     A = 3*J/40-2\n     P = Q = 0\n     for K in range(20):\n      if P*P+Q*Q < 4:\n       T = P*P-Q*Q+A\n"
     "       Q = 2*P*Q+B\n       P = T\n       X = X+1\n  return X\nprint(f())\n",
     "local X = 0\nfor R = 1, # do for I = 1, 30 do local B = 2.4*I/30-1.2 for J = 1, 40 do\nlocal A = 3*J/40-2 local "
     "P, Q "
     "= 0, 0\nfor K = 1, 20 do if P*P+Q*Q < 4 then\nlocal T = P*P-Q*Q+A Q = 2*P*Q+B P = T X = X+1 end end end end end\n"
     "print(X)\n",
     20},
    {"sieve",
     "255\\->\\Dim \\List 1:\\For 1\\->R \\To #:\\For 1\\->I \\To 255:1\\->\\List 1[I]:\\Next:\\For 2\\->I \\To 15:"
     "\\For I*I\\->J \\To 255 \\Step I:0\\->\\List 1[J]:\\Next:\\Next:\\Next:0\\->X:\\For 2\\->I \\To 255:"
     "X+I\\List 1[I]\\->X:\\Next",
     nullptr,
     300,
     "DIM L(255)\nFOR R=1 TO #\nFOR I=1 TO 255\nL(I)=1\nNEXT I\nFOR I=2 TO 15\nFOR J=I*I TO 255 STEP I\nL(J)=0\nNEXT "
     "J\n"
     "NEXT I\nNEXT R\nX=0\nFOR I=2 TO 255\nX=X+I*L(I)\nNEXT I\n",
     {300, 30, 1000},
     "L = [0]*256\nfor R in range(#):\n  for I in range(1, 256): L[I] = 1\n  for I in range(2, 16):\n"
     "    for J in range(I*I, 256, I): L[J] = 0\nX = 0\nfor I in range(2, 256): X = X+I*L[I]\nprint(X)\n",
     "local L = {}\nfor R = 1, # do for I = 1, 255 do L[I] = 1 end\nfor I = 2, 15 do for J = I*I, 255, I do L[J] = 0 "
     "end end "
     "end\nlocal X = 0\nfor I = 2, 255 do X = X+I*L[I] end\nprint(X)\n",
     3000},
    {"listSort",
     "60\\->\\Dim \\List 1:\\For 1\\->R \\To #:0\\->V:\\For 1\\->I \\To 60:V+37\\->V:\\If V>100:\\Then "
     "V-101\\->V:\\IfEnd:"
     "V\\->\\List 1[I]:\\Next:\\For 1\\->I \\To 59:\\For 1\\->J \\To 60-I:\\If \\List 1[J]>\\List 1[J+1]:\\Then "
     "\\List 1[J]\\->T:\\List 1[J+1]\\->\\List 1[J]:T\\->\\List 1[J+1]:\\IfEnd:\\Next:\\Next:\\Next:0\\->X:"
     "\\For 1\\->I \\To 60:X+I\\List 1[I]\\->X:\\Next",
     nullptr,
     60,
     "DIM L(60)\nFOR R=1 TO #\nV=0\nFOR I=1 TO 60\nV=V+37\nIF V>100 THEN V=V-101\nL(I)=V\nNEXT I\nFOR I=1 TO 59\n"
     "FOR J=1 TO 60-I\nIF L(J)<=L(J+1) THEN GOTO 150\nT=L(J)\nL(J)=L(J+1)\nL(J+1)=T\nNEXT J\nNEXT I\nNEXT R\nX=0\n"
     "FOR I=1 TO 60\nX=X+I*L(I)\nNEXT I\n",
     {60, 6, 200},
     "L = [0]*61\nfor R in range(#):\n  V = 0\n  for I in range(1, 61):\n    V = V+37\n    if V > 100: V = V-101\n"
     "    L[I] = V\n  for I in range(1, 60):\n    for J in range(1, 61-I):\n      if L[J] > L[J+1]:\n        T = L[J]\n"
     "        L[J] = L[J+1]\n        L[J+1] = T\nX = 0\nfor I in range(1, 61): X = X+I*L[I]\nprint(X)\n",
     "local L = {}\nfor R = 1, # do local V = 0\nfor I = 1, 60 do V = V+37 if V > 100 then V = V-101 end L[I] = V end\n"
     "for I = 1, 59 do for J = 1, 60-I do if L[J] > L[J+1] then local T = L[J] L[J] = L[J+1] L[J+1] = T end end end "
     "end\n"
     "local X = 0\nfor I = 1, 60 do X = X+I*L[I] end\nprint(X)\n",
     600},
    {"matrixProduct",
     "{10,10}\\->\\Dim \\Mat A:{10,10}\\->\\Dim \\Mat B:{10,10}\\->\\Dim \\Mat C:\\For 1\\->I \\To 10:\\For 1\\->J "
     "\\To 10:"
     "I+J\\->\\Mat A[I,J]:I-J\\->\\Mat B[I,J]:\\Next:\\Next:\\For 1\\->R \\To #:\\For 1\\->I \\To 10:\\For 1\\->J \\To "
     "10:"
     "0\\->S:\\For 1\\->K \\To 10:S+\\Mat A[I,K]*\\Mat B[K,J]\\->S:\\Next:S\\->\\Mat "
     "C[I,J]:\\Next:\\Next:\\Next:0\\->X:"
     "\\For 1\\->I \\To 10:\\For 1\\->J \\To 10:X+I*\\Mat C[I,J]\\->X:\\Next:\\Next",
     nullptr,
     100,
     "DIM A(10,10)\nDIM B(10,10)\nDIM C(10,10)\nFOR I=1 TO 10\nFOR J=1 TO 10\nA(I,J)=I+J\nB(I,J)=I-J\nNEXT J\nNEXT I\n"
     "FOR R=1 TO #\nFOR I=1 TO 10\nFOR J=1 TO 10\nS=0\nFOR K=1 TO 10\nS=S+A(I,K)*B(K,J)\nNEXT K\nC(I,J)=S\nNEXT "
     "J\nNEXT I\n"
     "NEXT R\nX=0\nFOR I=1 TO 10\nFOR J=1 TO 10\nX=X+I*C(I,J)\nNEXT J\nNEXT I\n",
     {100, 20, 300},
     "N = range(1, 11)\nA = [[I+J for J in range(11)] for I in range(11)]\nB = [[I-J for J in range(11)] for I in "
     "range(11)]\n"
     "C = [[0]*11 for I in range(11)]\nfor R in range(#):\n  for I in N:\n    for J in N:\n      S = 0\n      for K in "
     "N: "
     "S = S+A[I][K]*B[K][J]\n      C[I][J] = S\nX = 0\nfor I in N:\n  for J in N: X = X+I*C[I][J]\nprint(X)\n",
     "local A, B, C = {}, {}, {}\nfor I = 1, 10 do A[I], B[I], C[I] = {}, {}, {} for J = 1, 10 do A[I][J] = I+J "
     "B[I][J] = I-J "
     "end end\nfor R = 1, # do for I = 1, 10 do for J = 1, 10 do local S = 0\nfor K = 1, 10 do S = S+A[I][K]*B[K][J] "
     "end "
     "C[I][J] = S end end end\nlocal X = 0\nfor I = 1, 10 do for J = 1, 10 do X = X+I*C[I][J] end end\nprint(X)\n",
     600},
    {"gotos",
     gotoOurs.c_str(),
     nullptr,
     100000,
     gotoOfBasic.c_str(),
     {500000, 1000, 50000},
     nullptr,
     gotoOfLua.c_str(),
     500000},
    {"calls",
     "0\\->X:\\For 1\\->I \\To #:\\Prog \"SUB\":\\Next",
     "X+1\\->X",
     100000,
     "X=0\nFOR I=1 TO #\nGOSUB 60\nNEXT I\nGOTO 80\nX=X+1\nRETURN\nX=X\n",
     {200000, 20000, 500000},
     "X = 0\ndef SUB():\n    global X\n    X = X + 1\nfor I in range(#): SUB()\nprint(X)\n",
     "X = 0\nfunction SUB() X = X + 1 end\nfor I = 1, # do SUB() end\nprint(X)\n",
     2000000},
    {"textOutput",
     "\\For 1\\->I \\To #:\\Locate 1,1,I:\\Next:#\\->X",
     nullptr,
     20000,
     "FOR I=1 TO #\nPRINT CHR$(27);\"[1;1H\";I\nNEXT I\nX=#\n",
     {100000, 10000, 20000},
     "import sys\nfor I in range(1, # + 1): sys.stdout.write('\\033[1;1H%d\\n' % I)\nprint(#)\n",
     "for I = 1, # do io.write('\\27[1;1H', I, '\\n') end\nprint(#)\n",
     300000},
};

const char *const commands[] = {"yabasic", "bwbasic", "SDL_VIDEODRIVER=dummy brandy -quit", "python3", "lua5.4"};

// Brandy draws what it prints: it tells its result in a file.
constexpr char brandyEnd[] = "F%=OPENOUT(\"@\")\nBPUT#F%,STR$(X)\nCLOSE#F%\nQUIT\n";

std::string replaced(std::string text, char mark, const std::string &by) {
    for (std::size_t at = text.find(mark); at != std::string::npos; at = text.find(mark, at + by.size()))
        text.replace(at, 1, by);
    return text;
}

std::string numbered(const std::string &text) {
    std::string lines;
    int number = 10;
    for (std::size_t at = 0; at < text.size(); number += 10) {
        const std::size_t end = text.find('\n', at);
        lines += std::to_string(number) + " " + text.substr(at, end - at) + "\n";
        at = end + 1;
    }
    return lines;
}

// What the rival is given; empty when it can't say it.
std::string textFor(const Contest &contest, Rival rival, int passes, const std::string &resultFile) {
    const char *text = rival == python3 ? contest.python : rival == lua ? contest.luaText : contest.basic;
    if (text == nullptr) return {};
    std::string counted = replaced(text, '#', std::to_string(passes));
    if (rival == yabasic) {  // its IF of one line has no THEN
        for (std::size_t at = counted.find(" THEN"); at != std::string::npos; at = counted.find(" THEN"))
            counted.erase(at, 5);
    }
    if (rival == python3 || rival == lua) return counted;
    return numbered(counted) + (rival == brandy ? replaced(brandyEnd, '@', resultFile) : "9000 PRINT X\n9010 END\n");
}

// The last number that is printed, or -1e300.
double lastNumberOf(const std::string &line) {
    // NOLINTNEXTLINE(cert-env33-c): the rivals are found as a shell finds them
    const std::unique_ptr<FILE, int (*)(FILE *)> pipe(popen(line.c_str(), "r"), pclose);
    double last = -1e300, number = 0;
    while (pipe != nullptr && feof(pipe.get()) == 0) {
        // NOLINTNEXTLINE(cert-err34-c): a number that is too large is another result
        if (fscanf(pipe.get(), "%lf", &number) == 1) {
            last = number;
        } else {
            fgetc(pipe.get());
        }
    }
    return last;
}

std::string scratchFile() {
    char path[] = "/tmp/rivalXXXXXX";
    close(mkstemp(path));
    return path;
}

}  // namespace

std::span<const Contest> contests() { return table; }

int rivalPasses(const Contest &contest, Rival rival) {
    return rival == python3 || rival == lua ? contest.scriptPasses : contest.basicPasses[rival];
}

double processorSeconds(int whose) {
    rusage used{};
    getrusage(whose, &used);
    const auto seconds = [](const timeval &time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    return seconds(used.ru_utime) + seconds(used.ru_stime);
}

double rivalSeconds(const Contest &contest, Rival rival, int passes, double expected) {
    const std::string program = scratchFile(), result = scratchFile();
    std::string text = textFor(contest, rival, passes, result);
    double seconds = -1;
    if (!text.empty()) {
        std::ofstream(program) << text;
        const double before = processorSeconds(RUSAGE_CHILDREN);
        const std::string line = std::string(commands[rival]) + " " + program + " 2>/dev/null </dev/null";
        const double number = lastNumberOf(rival == brandy ? line + " >/dev/null; cat " + result : line);
        seconds = number == expected ? processorSeconds(RUSAGE_CHILDREN) - before : -1;
    }
    unlink(program.c_str());
    unlink(result.c_str());
    return seconds;
}

}  // namespace numalink
