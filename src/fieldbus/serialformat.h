#pragma once

#include <QString>
#include <optional>

namespace telvane {

enum class Parity { None, Even, Odd, Mark, Space };
enum class StopBits { One, OneAndHalf, Two };

// The line settings held in "Formato", for example "9600,N,8,1".
struct SerialFormat
{
    int baudRate = 9600;
    Parity parity = Parity::None;
    int dataBits = 8;
    StopBits stopBits = StopBits::One;

    friend bool operator==(const SerialFormat &, const SerialFormat &) = default;
};

// Speed, parity letter (N, E, O, M, S), data bits (5 to 8) and stop bits (1, 1.5, 2),
// separated by commas; blanks around each field and lower-case letters are accepted.
// Anything else gives nothing, and `whyNot` (when given) says what was wrong.
std::optional<SerialFormat> parseSerialFormat(const QString &text, QString *whyNot = nullptr);

// How the platform names its numbered serial ports.
enum class PortNaming { Windows, Posix };

#ifdef Q_OS_WIN
inline constexpr PortNaming NativePortNaming = PortNaming::Windows;
#else
inline constexpr PortNaming NativePortNaming = PortNaming::Posix;
#endif

// The device to open for "Porta": a port number n (1 to 255) is the platform's n-th
// port ("COMn" on Windows, "/dev/ttyS(n-1)" elsewhere); a device name ("COM3" on
// Windows, an absolute path such as /dev/ttyUSB0 or /dev/pts/3 elsewhere) is taken as
// it is. Anything else gives nothing, and `whyNot` says why.
std::optional<QString> resolveSerialPort(const QString &port, QString *whyNot = nullptr,
                                         PortNaming naming = NativePortNaming);

} // namespace telvane
