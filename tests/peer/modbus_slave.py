#!/usr/bin/python3
"""A Modbus RTU slave for the peer tests and the bench: pymodbus's serial server on a
serial device (one end of a socat pty pair), so our master talks to an implementation
we did not write.

Each --slave gives one slave and the items it has; any other address is refused with
exception 2, and a slave not listed stays silent:

    modbus_slave.py --port /tmp/x/slave \
        --slave "1 hr:0=1234,1=65535 ir:3=77 co:0=1,1=0 di:2=1" --slave "7 hr:10=5"

Kinds: co (coils, code 1 and 5), di (discrete inputs, code 2), hr (holding registers,
codes 3 and 6), ir (input registers, code 4). A request to slave 0 is a broadcast:
every slave executes it and nobody answers.

--wire-delay-baud B makes each answer come as late as it would on a real line at B
baud with 8N1 characters: the request's and the reply's time on the wire plus the
3.5-character silence that ends a frame (a pty moves bytes at once, whatever the baud).

--log-requests prints every well-formed request frame seen on the line, to any slave,
present or not, in hex, one a line on standard output, as it arrives.
"""

import argparse
import logging
import sys
import time

from pymodbus.datastore import ModbusServerContext, ModbusSlaveContext, ModbusSparseDataBlock
from pymodbus.server import StartSerialServer
from pymodbus.transaction import ModbusRtuFramer

KINDS = ("co", "di", "hr", "ir")
BITS_PER_CHARACTER = 10  # start, eight data bits, stop
REQUEST_BYTES = 8  # every request our master sends is one 8-byte frame


def parse_slave(text):
    """'1 hr:0=1234,1=5 co:0=1' -> (1, {'hr': {0: 1234, 1: 5}, 'co': {0: 1}})."""
    words = text.split()
    if not words:
        raise argparse.ArgumentTypeError("empty slave")
    try:
        unit = int(words[0])
    except ValueError as exc:
        raise argparse.ArgumentTypeError(f"slave address {words[0]!r} is not a number") from exc
    if not 1 <= unit <= 247:
        raise argparse.ArgumentTypeError(f"slave address {unit} is not 1..247")
    items = {kind: {} for kind in KINDS}
    for word in words[1:]:
        kind, _, pairs = word.partition(":")
        if kind not in KINDS:
            raise argparse.ArgumentTypeError(f"unknown kind {kind!r} (use {', '.join(KINDS)})")
        for pair in filter(None, pairs.split(",")):
            address, _, value = pair.partition("=")
            try:
                address, value = int(address), int(value)
            except ValueError as exc:
                raise argparse.ArgumentTypeError(f"bad item {pair!r} in {word!r}") from exc
            if not 0 <= address <= 0xFFFF or not 0 <= value <= 0xFFFF:
                raise argparse.ArgumentTypeError(f"item {pair!r} out of range")
            items[kind][address] = value
    return unit, items


class LoggingRtuFramer(ModbusRtuFramer):
    """Prints each request frame whose CRC checks, before it is answered."""

    def checkFrame(self):
        good = super().checkFrame()
        if good:
            print(self._buffer[: self._header["len"]].hex(), flush=True)
        return good


def slave_context(items):
    # Sparse blocks: only the listed addresses exist. zero_mode: address N is item N.
    blocks = {kind: ModbusSparseDataBlock(values) for kind, values in items.items()}
    return ModbusSlaveContext(zero_mode=True, **blocks)


def wire_delay(baud):
    character = BITS_PER_CHARACTER / baud

    def delay(response):
        reply_bytes = len(response.encode()) + 4  # address, function code, CRC
        time.sleep((REQUEST_BYTES + reply_bytes + 3.5) * character)
        return response, False

    return delay


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--port", required=True, help="serial device to serve on")
    parser.add_argument("--slave", action="append", type=parse_slave, required=True,
                        help="'UNIT kind:addr=value,... ...'; may be repeated")
    parser.add_argument("--wire-delay-baud", type=int, metavar="BAUD",
                        help="answer as late as a real line at this speed would")
    parser.add_argument("--log-requests", action="store_true", help="print every request frame seen")
    args = parser.parse_args()

    logging.basicConfig(stream=sys.stderr, level=logging.WARNING, format="modbus_slave: %(message)s")
    # A request for an absent slave or address is normal here; pymodbus logs it as an error.
    logging.getLogger("pymodbus").setLevel(logging.CRITICAL)

    slaves = {unit: slave_context(items) for unit, items in args.slave}
    options = {}
    if args.wire_delay_baud:
        options["response_manipulator"] = wire_delay(args.wire_delay_baud)

    StartSerialServer(
        context=ModbusServerContext(slaves=slaves, single=False),
        framer=LoggingRtuFramer if args.log_requests else ModbusRtuFramer,  # the default here is ASCII
        port=args.port,
        baudrate=args.wire_delay_baud or 9600,
        ignore_missing_slaves=True,
        broadcast_enable=True,
        **options,
    )


if __name__ == "__main__":
    main()
