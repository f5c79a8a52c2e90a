#!/usr/bin/env python3
"""A loopback SMTP server for the mail tests.

Listens on 127.0.0.1 on a free port and prints "PORT <n>" once it listens.

  smtp_peer.py accept OUTDIR [--login USER:PASSWORD]
      takes every mail; mail n goes to OUTDIR/n.eml (the data as received)
      and OUTDIR/n.json (envelope sender, receivers, login used).
      With --login the server offers AUTH and takes only that user.
  smtp_peer.py refuse-login
      offers AUTH and refuses every login.
  smtp_peer.py drop
      answers until DATA, then closes the connection in the middle of the mail.
"""

import asyncio
import json
import logging
import os
import sys
import warnings

from aiosmtpd.smtp import SMTP, AuthResult


class SavingHandler:
    def __init__(self, outdir):
        self.outdir = outdir
        self.count = 0

    async def handle_DATA(self, server, session, envelope):
        self.count += 1
        base = os.path.join(self.outdir, str(self.count))
        with open(base + ".eml", "wb") as f:
            f.write(envelope.original_content or envelope.content)
        login = session.auth_data.login.decode() if session.authenticated and session.auth_data else None
        with open(base + ".json", "w", encoding="utf-8") as f:
            json.dump({"from": envelope.mail_from, "to": envelope.rcpt_tos, "login": login}, f)
        return "250 OK"


def authenticator_for(user, password):
    def authenticate(server, session, envelope, mechanism, auth_data):
        ok = user is not None and auth_data.login == user.encode() and auth_data.password == password.encode()
        return AuthResult(success=ok, handled=False, auth_data=auth_data if ok else None)
    return authenticate


async def drop_client(reader, writer):
    writer.write(b"220 peer ESMTP\r\n")
    await writer.drain()
    while True:
        line = await reader.readline()
        if not line:
            break
        verb = line[:4].upper()
        if verb == b"EHLO" or verb == b"HELO":
            writer.write(b"250 peer\r\n")
        elif verb == b"DATA":
            writer.write(b"354 End data with <CR><LF>.<CR><LF>\r\n")
            await writer.drain()
            await reader.read(16)
            break
        elif verb == b"QUIT":
            writer.write(b"221 bye\r\n")
            await writer.drain()
            break
        else:
            writer.write(b"250 OK\r\n")
        await writer.drain()
    writer.close()


async def main(argv):
    mode = argv[1]
    loop = asyncio.get_running_loop()
    if mode == "drop":
        server = await asyncio.start_server(drop_client, "127.0.0.1", 0)
    else:
        user = password = None
        outdir = None
        if mode == "accept":
            outdir = argv[2]
            if "--login" in argv:
                user, password = argv[argv.index("--login") + 1].split(":", 1)
        offer_auth = mode == "refuse-login" or user is not None
        handler = SavingHandler(outdir)

        def factory():
            options = {"auth_require_tls": False}
            if offer_auth:
                options["authenticator"] = authenticator_for(user, password)
            return SMTP(handler, **options)

        server = await loop.create_server(factory, "127.0.0.1", 0)
    print(f"PORT {server.sockets[0].getsockname()[1]}", flush=True)
    async with server:
        await server.serve_forever()


if __name__ == "__main__":
    # The TLS test greets this plain server with a TLS hello; keep the
    # server's complaint about it, and its own deprecation notes, out of the test output.
    logging.getLogger("mail.log").setLevel(logging.CRITICAL)
    warnings.simplefilter("ignore", DeprecationWarning)
    try:
        asyncio.run(main(sys.argv))
    except KeyboardInterrupt:
        pass
