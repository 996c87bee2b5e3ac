#!/usr/bin/python3
"""rtsp_server.py: a network camera: serves pictures at rtsp://127.0.0.1:PORT/street.

    rtsp_server.py PORT [PIPELINE]

PIPELINE ends in a payloader named pay0."""
import sys

import gi

gi.require_version("Gst", "1.0")
gi.require_version("GstRtspServer", "1.0")
from gi.repository import GLib, Gst, GstRtspServer  # noqa: E402

PICTURES = "videotestsrc is-live=true ! video/x-raw,format=I420,width=800,height=480,framerate=30/1 ! jpegenc ! rtpjpegpay name=pay0"

Gst.init(None)
server = GstRtspServer.RTSPServer()
server.set_address("127.0.0.1")
server.set_service(sys.argv[1])
factory = GstRtspServer.RTSPMediaFactory()
factory.set_launch("( " + (sys.argv[2] if len(sys.argv) > 2 else PICTURES) + " )")
factory.set_shared(True)
server.get_mount_points().add_factory("/street", factory)
if server.attach(None) == 0:
    sys.exit("port " + sys.argv[1] + " is taken")
print("ready", flush=True)
GLib.MainLoop().run()
