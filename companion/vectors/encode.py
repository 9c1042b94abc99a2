#!/usr/bin/env python3
"""The companion's messages in another language, held against the vectors beside this file.

    encode.py             checks that every message described in *.json comes out as the bytes that stand there
    encode.py FILE...     the same of these files

Copy the functions, or write your own and check them in the same way. docs/protocol.md says what the fields mean.
"""
import json
import struct
import sys
from pathlib import Path

TYPES = {"FrameSharingInfo": 2, "TrackingUpdate": 4, "RecenterRequest": 8, "FramerateUpdate": 9, "ControllerUpdate": 10,
         "HapticPulse": 11, "ShutdownRequest": 14}


def message(type_name, payload=b""):
    return struct.pack("<II", len(payload), TYPES[type_name]) + payload


def tracking_update(format, **pose):
    """The pose by one of the formats: the numbers that the format has, then its code."""
    numbers = {
        0: lambda: struct.pack("<12f", *pose["matrix"]),
        2: lambda: struct.pack("<9f", *pose["gyroscope"], *pose["accelerometer"], *pose["magnetometer"]),
        3: lambda: struct.pack("<6f12x", *pose["angles"], *pose["position"]),
        4: lambda: struct.pack("<7f", *pose["orientation"], *pose["position"]),
        5: lambda: struct.pack("<3f", *pose["position"]),
        6: lambda: struct.pack("<12f", *pose["matrix"]),
        254: lambda: struct.pack("<B", pose["state"]),
    }.get(format, lambda: b"")
    return message("TrackingUpdate", numbers() + struct.pack("<I", format))


def recenter_request():
    return message("RecenterRequest")


def framerate_update(framesPerSecond):
    return message("FramerateUpdate", struct.pack("<I", framesPerSecond))


def controller_update(controllerId, pose, trackingState=0, packetNumber=0, pressedButtons=0, touchedButtons=0,
                      trackpad=(0, 0), trigger=(0, 0), acceleration=(0, 0, 0), velocity=(0, 0, 0)):
    payload = struct.pack("<II8x12f16x", controllerId, trackingState, *pose)
    payload += struct.pack("<I4xQQ4f24x", packetNumber, pressedButtons, touchedButtons, *trackpad, *trigger)
    payload += struct.pack("<6d", *acceleration, *velocity)
    return message("ControllerUpdate", payload)


def shutdown_request():
    return message("ShutdownRequest")


def frame_sharing_info(processId, sharedHandle0, sharedHandle1, name, invertY):
    """From the driver: for tests of what reads it."""
    payload = struct.pack("<III60sB3x", processId, sharedHandle0, sharedHandle1, name.encode("ascii"), invertY)
    return message("FrameSharingInfo", payload)


def haptic_pulse(controllerId, timestampMicroseconds, durationMicroseconds):
    """From the driver: for tests of what reads it."""
    return message("HapticPulse", struct.pack("<IIHxx", controllerId, timestampMicroseconds, durationMicroseconds))


ENCODERS = {"FrameSharingInfo": frame_sharing_info, "TrackingUpdate": tracking_update,
            "RecenterRequest": recenter_request, "FramerateUpdate": framerate_update,
            "ControllerUpdate": controller_update, "HapticPulse": haptic_pulse, "ShutdownRequest": shutdown_request}


def encode(described):
    """The bytes of a message as the vectors describe it: {"type": name, field: value, ...}."""
    fields = {name: value for name, value in described.items() if name != "type"}
    return ENCODERS[described["type"]](**fields)


def differences(path):
    """One line for each message of a file that comes out otherwise, and how many were looked at."""
    vectors = json.loads(path.read_text())["vectors"]
    described = [vector for vector in vectors if "message" in vector]
    wrong = [f"{path.name}, {vector['name']}: {encode(vector['message']).hex()}, not {vector['bytes']}"
             for vector in described if encode(vector["message"]) != bytes.fromhex(vector["bytes"])]
    return wrong, len(described)


def main():
    paths = [Path(name) for name in sys.argv[1:]] or sorted(Path(__file__).parent.glob("*.json"))
    wrong, looked_at = [], 0
    for path in paths:
        lines, count = differences(path)
        wrong += lines
        looked_at += count
    print("\n".join(wrong) if wrong else f"{looked_at} messages come out as they should")
    return 1 if wrong or looked_at == 0 else 0


if __name__ == "__main__":
    sys.exit(main())
