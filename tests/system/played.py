"""Servers that are played, each on an address of its own: played.py <address>:<port>=<mode>...

A mode is "mute <greeting>", which greets and says no more, or "login", which takes mail after a login. What a mute server hears is
printed; a mail lies in the folder "mails" when its client is answered.
"""
import asyncio
import os
import sys

from aiosmtpd.smtp import SMTP, AuthResult, LoginPassword


class Handler:
    async def handle_DATA(self, server, session, envelope):
        with open(f"mails/{len(os.listdir('mails')):04}", "wb") as file:
            file.write(envelope.original_content)
        return "250 OK"


def authenticate(server, session, envelope, mechanism, login):
    return AuthResult(success=login == LoginPassword(b"operator", b"open sesame"), handled=False)


async def serve(place, mode):
    async def greet(reader, writer):
        writer.write(mode[5:].encode() + b"\r\n" * bool(mode[5:]))
        print("client of", place, flush=True)
        async for line in reader:
            print(place, line.decode().strip(), flush=True)

    address, port = place.split(":")
    if mode.startswith("mute"):
        return await asyncio.start_server(greet, address, int(port))
    login = dict(auth_required=True, auth_require_tls=False, authenticator=authenticate)
    login["auth_exclude_mechanism"] = ["LOGIN"]  # which would ask in words of its own
    return await asyncio.get_running_loop().create_server(lambda: SMTP(Handler(), hostname="localhost", **login), address, int(port))


async def main():
    os.mkdir("mails")
    served = [await serve(*each.split("=", 1)) for each in sys.argv[1:]]
    print("ready", flush=True)
    await asyncio.gather(*(server.serve_forever() for server in served))


asyncio.run(main())
