/*
 * The protocol between driver_ombrel and a companion, for C11 and C++: names, numbers, and the layout of everything that
 * the two exchange. docs/protocol.md says what each side does with it, and when.
 *
 * Integers and floating-point numbers are little-endian, float and double are IEEE 754. Positions are in metres, angles
 * in radians. Axes are right-handed: x to the right, y up, z backwards, so that straight ahead is -z; the origin is on the
 * floor. A positive angle about x turns upwards, about y to the left, about z tilts to the left.
 *
 * The structures are what stands on the pipes, byte for byte. Copy them from and to buffers (memcpy): a payload may
 * begin at any address. Bytes without a meaning ("unused") are sent as zeros and ignored when received.
 *
 * Names begin with OMBREL_ or Ombrel. Needs no other header than the two below, and links nothing.
 */
#ifndef OMBREL_PROTOCOL_H
#define OMBREL_PROTOCOL_H

#include <stddef.h>
#include <stdint.h>

#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ != __ORDER_LITTLE_ENDIAN__
#error "The structures of this header are little-endian."
#endif

#ifdef __cplusplus
#define OMBREL_ASSERT(condition) static_assert(condition, #condition)
#else
#define OMBREL_ASSERT(condition) _Static_assert(condition, #condition)
#endif
#define OMBREL_ASSERT_SIZE(type, bytes) OMBREL_ASSERT(sizeof(type) == (bytes))
#define OMBREL_ASSERT_OFFSET(type, field, bytes) OMBREL_ASSERT(offsetof(type, field) == (bytes))

/* ---- Names and limits ---- */

/* The file name of the companion's process, in exactly this case. It must run when the runtime loads the driver. */
#define OMBREL_PROCESS_NAME "Ombrel.exe"
/* The process that a ShutdownRequest ends, in exactly this case. */
#define OMBREL_MONITOR_PROCESS_NAME "vrmonitor.exe"

/* Both pipes are made by the companion. It reads the one and writes the other; make both before waiting on either. */
#define OMBREL_PIPE_FROM_DRIVER "\\\\.\\pipe\\PellmorOmbrelTransmissionPipeV1In"
#define OMBREL_PIPE_TO_DRIVER "\\\\.\\pipe\\PellmorOmbrelTransmissionPipeV1Out"
/* Buffer to ask for at least, per pipe, in bytes. */
#define OMBREL_MIN_PIPE_BUFFER 4096

/* Bytes of payload, without the header. The driver ends a connection on which more is announced. */
#define OMBREL_MAX_PAYLOAD 65536

/* ---- Messages ---- */

/* Stands before every payload, in both directions. */
typedef struct OmbrelMessageHeader {
  uint32_t length; /* bytes of payload that follow */
  uint32_t type;   /* enum OmbrelMessageType */
} OmbrelMessageHeader;
OMBREL_ASSERT_SIZE(OmbrelMessageHeader, 8);
OMBREL_ASSERT_OFFSET(OmbrelMessageHeader, type, 4);

enum OmbrelMessageType {
  OMBREL_FRAME_SHARING_INFO = 2, /* driver to companion: OmbrelFrameSharingInfo */
  OMBREL_TRACKING_UPDATE = 4,    /* to the driver: one of the OmbrelTracking structures */
  OMBREL_RECENTER_REQUEST = 8,   /* to the driver: no payload; straight ahead is where the head faces now */
  OMBREL_FRAMERATE_UPDATE = 9,   /* to the driver: OmbrelFramerateUpdate */
  OMBREL_CONTROLLER_UPDATE = 10, /* to the driver: OmbrelControllerUpdate */
  OMBREL_HAPTIC_PULSE = 11,      /* driver to companion: OmbrelHapticPulse */
  OMBREL_SHUTDOWN_REQUEST = 14   /* to the driver: no payload; ends the runtime's session */
};

/* Of the head, and of each controller. */
enum OmbrelTrackingStateCode { OMBREL_TRACKING = 0, OMBREL_OUT_OF_RANGE = 1, OMBREL_NOT_CONNECTED = 2 };

/* ---- TrackingUpdate: the head ---- */

/* The last four bytes of a TrackingUpdate's payload. Codes that are not listed count as OMBREL_POSE_ROTATION_MATRIX. */
enum OmbrelPoseFormat {
  OMBREL_POSE_ROTATION_MATRIX = 0,    /* OmbrelTrackingMatrix: replaces the orientation */
  OMBREL_POSE_REPEAT = 1,             /* OmbrelTrackingFormatOnly: publishes again */
  OMBREL_POSE_SENSORS = 2,            /* OmbrelTrackingSensors: turns the orientation */
  OMBREL_POSE_EULER_ANGLES = 3,       /* OmbrelTrackingEulerAngles: replaces orientation and position */
  OMBREL_POSE_QUATERNION = 4,         /* OmbrelTrackingQuaternion: replaces orientation and position; the one to use */
  OMBREL_POSE_POSITION_ONLY = 5,      /* OmbrelTrackingPosition: shows with the next update of another format */
  OMBREL_POSE_MATRIX = 6,             /* OmbrelTrackingMatrix: replaces orientation and position */
  OMBREL_POSE_RECENTER = 50,          /* OmbrelTrackingFormatOnly: recenters and publishes */
  OMBREL_POSE_TRACKING_STATE = 254,   /* OmbrelTrackingState: sets the state and publishes */
  OMBREL_POSE_REPEAT_TOO = 2147483647 /* OmbrelTrackingFormatOnly: publishes again */
};

/* Where the head is until a position is sent, in metres above the floor; x and z are 0. */
#define OMBREL_DEFAULT_HEAD_HEIGHT 1.7f

typedef struct OmbrelTrackingQuaternion {
  float orientation[4]; /* x, y, z, w; of unit length */
  float position[3];    /* x, y, z; metres */
  uint32_t format;      /* OMBREL_POSE_QUATERNION */
} OmbrelTrackingQuaternion;
OMBREL_ASSERT_SIZE(OmbrelTrackingQuaternion, 32);
OMBREL_ASSERT_OFFSET(OmbrelTrackingQuaternion, position, 16);
OMBREL_ASSERT_OFFSET(OmbrelTrackingQuaternion, format, 28);

/* Three rows of four, to be multiplied with column vectors. Columns 0 to 2 are where the head's right, its top and its
 * back point. Column 3 is the position in metres with OMBREL_POSE_MATRIX, and is not read with
 * OMBREL_POSE_ROTATION_MATRIX. Avoid exact half-turns. */
typedef struct OmbrelTrackingMatrix {
  float matrix[12];
  uint32_t format; /* OMBREL_POSE_ROTATION_MATRIX or OMBREL_POSE_MATRIX */
} OmbrelTrackingMatrix;
OMBREL_ASSERT_SIZE(OmbrelTrackingMatrix, 52);
OMBREL_ASSERT_OFFSET(OmbrelTrackingMatrix, format, 48);

typedef struct OmbrelTrackingEulerAngles {
  float angles[3];   /* about x (pitch), y (yaw), z (roll); radians; pitched first, then rolled, then turned */
  float position[3]; /* x, y, z; metres */
  float unused24;
  uint8_t unused28[8];
  uint32_t format; /* OMBREL_POSE_EULER_ANGLES */
} OmbrelTrackingEulerAngles;
OMBREL_ASSERT_SIZE(OmbrelTrackingEulerAngles, 40);
OMBREL_ASSERT_OFFSET(OmbrelTrackingEulerAngles, position, 12);
OMBREL_ASSERT_OFFSET(OmbrelTrackingEulerAngles, unused24, 24);
OMBREL_ASSERT_OFFSET(OmbrelTrackingEulerAngles, unused28, 28);
OMBREL_ASSERT_OFFSET(OmbrelTrackingEulerAngles, format, 36);

typedef struct OmbrelTrackingPosition {
  float position[3]; /* x, y, z; metres */
  uint32_t format;   /* OMBREL_POSE_POSITION_ONLY */
} OmbrelTrackingPosition;
OMBREL_ASSERT_SIZE(OmbrelTrackingPosition, 16);
OMBREL_ASSERT_OFFSET(OmbrelTrackingPosition, format, 12);

/* Each message counts as 1/OMBREL_SENSOR_RATE of a second, however often they come: send so many a second. */
#define OMBREL_SENSOR_RATE 76

typedef struct OmbrelTrackingSensors {
  float gyroscope[3];     /* x, y, z; radians per second, in the head's own axes */
  float accelerometer[3]; /* x, y, z; any unit; up is +z for the driver's filter; all zero: left out */
  float magnetometer[3];  /* x, y, z; any unit; all zero: left out */
  uint32_t format;        /* OMBREL_POSE_SENSORS */
} OmbrelTrackingSensors;
OMBREL_ASSERT_SIZE(OmbrelTrackingSensors, 40);
OMBREL_ASSERT_OFFSET(OmbrelTrackingSensors, accelerometer, 12);
OMBREL_ASSERT_OFFSET(OmbrelTrackingSensors, magnetometer, 24);
OMBREL_ASSERT_OFFSET(OmbrelTrackingSensors, format, 36);

/* The only structure with a field that a compiler would align elsewhere. */
#pragma pack(push, 1)
typedef struct OmbrelTrackingState {
  uint8_t state;   /* enum OmbrelTrackingStateCode */
  uint32_t format; /* OMBREL_POSE_TRACKING_STATE */
} OmbrelTrackingState;
#pragma pack(pop)
OMBREL_ASSERT_SIZE(OmbrelTrackingState, 5);
OMBREL_ASSERT_OFFSET(OmbrelTrackingState, format, 1);

typedef struct OmbrelTrackingFormatOnly {
  uint32_t format; /* OMBREL_POSE_REPEAT, OMBREL_POSE_RECENTER or OMBREL_POSE_REPEAT_TOO */
} OmbrelTrackingFormatOnly;
OMBREL_ASSERT_SIZE(OmbrelTrackingFormatOnly, 4);

/* ---- FramerateUpdate ---- */

/* Frames per second before the first FramerateUpdate. */
#define OMBREL_DEFAULT_FRAME_RATE 60

typedef struct OmbrelFramerateUpdate {
  uint32_t framesPerSecond; /* never 0 */
} OmbrelFramerateUpdate;
OMBREL_ASSERT_SIZE(OmbrelFramerateUpdate, 4);

/* ---- ControllerUpdate ---- */

/* Bit numbers of pressedButtons and, for the trackpad alone, of touchedButtons. */
enum OmbrelButton {
  OMBREL_BUTTON_SYSTEM = 0,
  OMBREL_BUTTON_APPLICATION_MENU = 1,
  OMBREL_BUTTON_GRIP = 2,
  OMBREL_BUTTON_TRACKPAD = 32,
  OMBREL_BUTTON_TRIGGER = 33
};
#define OMBREL_BUTTON_MASK(button) (UINT64_C(1) << (button))

/* The whole state of one controller. The first record with a new id only announces the controller. */
typedef struct OmbrelControllerUpdate {
  uint32_t controllerId;  /* any number; each new one makes a new controller, which stays for the session */
  uint32_t trackingState; /* enum OmbrelTrackingStateCode */
  uint8_t unused8[8];
  float pose[12]; /* three rows of four as in OmbrelTrackingMatrix, the position in column 3; metres */
  uint8_t unused64[16];
  uint32_t packetNumber; /* without effect */
  uint8_t unused84[4];
  uint64_t pressedButtons; /* OMBREL_BUTTON_MASK of each button that is down */
  uint64_t touchedButtons; /* OMBREL_BUTTON_MASK(OMBREL_BUTTON_TRACKPAD) or 0 */
  float trackpad[2];       /* x to the right, y upwards; -1 to 1 */
  float trigger[2];        /* the pull, 0 to 1, and 0; the button is a bit of its own */
  float unusedAxes[6];
  double acceleration[3]; /* x, y, z of the room; metres per second squared */
  double velocity[3];     /* x, y, z of the room; metres per second */
} OmbrelControllerUpdate;
OMBREL_ASSERT_SIZE(OmbrelControllerUpdate, 192);
OMBREL_ASSERT_OFFSET(OmbrelControllerUpdate, trackingState, 4);
OMBREL_ASSERT_OFFSET(OmbrelControllerUpdate, unused8, 8);
OMBREL_ASSERT_OFFSET(OmbrelControllerUpdate, pose, 16);
OMBREL_ASSERT_OFFSET(OmbrelControllerUpdate, unused64, 64);
OMBREL_ASSERT_OFFSET(OmbrelControllerUpdate, packetNumber, 80);
OMBREL_ASSERT_OFFSET(OmbrelControllerUpdate, unused84, 84);
OMBREL_ASSERT_OFFSET(OmbrelControllerUpdate, pressedButtons, 88);
OMBREL_ASSERT_OFFSET(OmbrelControllerUpdate, touchedButtons, 96);
OMBREL_ASSERT_OFFSET(OmbrelControllerUpdate, trackpad, 104);
OMBREL_ASSERT_OFFSET(OmbrelControllerUpdate, trigger, 112);
OMBREL_ASSERT_OFFSET(OmbrelControllerUpdate, unusedAxes, 120);
OMBREL_ASSERT_OFFSET(OmbrelControllerUpdate, acceleration, 144);
OMBREL_ASSERT_OFFSET(OmbrelControllerUpdate, velocity, 168);

/* ---- HapticPulse ---- */

typedef struct OmbrelHapticPulse {
  uint32_t controllerId;          /* as in the controller's OmbrelControllerUpdate */
  uint32_t timestampMicroseconds; /* the performance counter in microseconds, low 32 bits */
  uint16_t durationMicroseconds;  /* low 16 bits of the duration */
  uint16_t unused;
} OmbrelHapticPulse;
OMBREL_ASSERT_SIZE(OmbrelHapticPulse, 12);
OMBREL_ASSERT_OFFSET(OmbrelHapticPulse, timestampMicroseconds, 4);
OMBREL_ASSERT_OFFSET(OmbrelHapticPulse, durationMicroseconds, 8);
OMBREL_ASSERT_OFFSET(OmbrelHapticPulse, unused, 10);

/* ---- FrameSharingInfo, and the frames ---- */

/* Characters of the name, without the zeros that follow. */
#define OMBREL_SHARING_NAME_LENGTH 58

/* Sent once per connection, with its first frame. The handles hold for this connection alone. */
typedef struct OmbrelFrameSharingInfo {
  uint32_t processId;     /* the driver's process */
  uint32_t sharedHandle0; /* of texture 0; widened with zeros, for ID3D11Device::OpenSharedResource */
  uint32_t sharedHandle1; /* of texture 1 */
  char name[60];          /* of the memory block, and stem of the two mutexes' names; ends with a zero */
  uint8_t invertY;        /* 1: the driver has turned the frames upside down; nothing is left to do */
  uint8_t unused[3];
} OmbrelFrameSharingInfo;
OMBREL_ASSERT_SIZE(OmbrelFrameSharingInfo, 76);
OMBREL_ASSERT_OFFSET(OmbrelFrameSharingInfo, sharedHandle0, 4);
OMBREL_ASSERT_OFFSET(OmbrelFrameSharingInfo, sharedHandle1, 8);
OMBREL_ASSERT_OFFSET(OmbrelFrameSharingInfo, name, 12);
OMBREL_ASSERT_OFFSET(OmbrelFrameSharingInfo, invertY, 72);
OMBREL_ASSERT_OFFSET(OmbrelFrameSharingInfo, unused, 73);

/* Two output textures, each with the left eye in its left half and the right eye in its right half. They take turns,
 * beginning with texture 0; both sides acquire and release their keyed mutexes with this key. */
#define OMBREL_TEXTURES 2
#define OMBREL_KEYED_MUTEX_KEY 0
/* DXGI_FORMAT_R8G8B8A8_UNORM: a byte each of red, green, blue (display values) and alpha. */
#define OMBREL_TEXTURE_FORMAT 28
/* Tangent of the angle from straight ahead to each of the four edges of an eye's picture: 90 by 90 degrees. */
#define OMBREL_EDGE_TANGENT 1.0f

/* The pose that a frame was rendered with. Read it while you hold the texture of the same number. All zero: unknown, as
 * with the virtual display. */
typedef struct OmbrelPoseSlot {
  float matrix[16]; /* four rows of four; the upper three as in OmbrelTrackingMatrix, the last is 0, 0, 0, 1 */
} OmbrelPoseSlot;
OMBREL_ASSERT_SIZE(OmbrelPoseSlot, 64);

/* The memory block whose name is in OmbrelFrameSharingInfo. */
typedef struct OmbrelPoseBlock {
  OmbrelPoseSlot slots[OMBREL_TEXTURES];
} OmbrelPoseBlock;
OMBREL_ASSERT_SIZE(OmbrelPoseBlock, 128);

#endif
