#!/usr/bin/env python3
"""A pyftpdlib server for tests and the demo. Prints "port N" when it listens."""
import argparse
import logging
import os
import sys

from pyftpdlib.authorizers import DummyAuthorizer
from pyftpdlib.handlers import FTPHandler, TLS_FTPHandler
from pyftpdlib.servers import FTPServer

p = argparse.ArgumentParser()
p.add_argument("--address", default="127.0.0.1")
p.add_argument("--port", type=int, default=0, help="0 = any free one")
p.add_argument("--root", required=True)
p.add_argument("--user", required=True)
p.add_argument("--password", required=True)
p.add_argument("--max-per-ip", type=int, default=0)
p.add_argument("--certificate", help="certificate and key, PEM; allows AUTH TLS")
p.add_argument("--tls-only", action="store_true")
p.add_argument("--masquerade", help="address told in PASV replies")
p.add_argument("--deny", default="", help="commands to refuse, comma separated")
p.add_argument("--permissions", default="elradfmwMT")
p.add_argument("--timeout", type=int, default=600, help="idle limit in seconds")
p.add_argument("--quiet", action="store_true", help="log no commands and replies")
p.add_argument("--uid", type=int, help="account to run as, when started by root")
p.add_argument("--gid", type=int)
a = p.parse_args()

logging.basicConfig(level=logging.WARNING if a.quiet else logging.DEBUG, stream=sys.stderr)

base = TLS_FTPHandler if a.certificate else FTPHandler


class Handler(base):
    pass


if a.certificate:
    Handler.certfile = a.certificate
    Handler.tls_control_required = a.tls_only
    Handler.tls_data_required = a.tls_only
    Handler.ssl_context = Handler.get_ssl_context()
if a.masquerade:
    Handler.masquerade_address = a.masquerade
denied = a.deny.upper().split(",")
Handler.proto_cmds = {k: v for k, v in base.proto_cmds.items() if k not in denied}
Handler.banner = "ready"
Handler.timeout = a.timeout

server = FTPServer((a.address, a.port), Handler)
server.max_cons = 4096
server.max_cons_per_ip = a.max_per_ip
os.chdir("/")  # it goes back there after every command, also as somebody who may not enter this folder
if a.uid is not None:
    os.setgroups([])
    os.setgid(a.gid)
    os.setuid(a.uid)
os.umask(0o022)
Handler.authorizer = DummyAuthorizer()
Handler.authorizer.add_user(a.user, a.password, a.root, perm=a.permissions)
print("port", server.address[1], flush=True)
server.serve_forever()
