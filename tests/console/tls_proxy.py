"""Decrypts connections and hands them on to a server of the loopback address.

usage: tls_proxy.py CERTIFICATE KEY PORT SERVER_PORT
"""
import select
import socket
import ssl
import sys


def hand_on(client, server):
    while True:
        ready = [client] if client.pending() else select.select([client, server], [], [], 30)[0]
        if not ready:
            return
        for one, other in ((client, server), (server, client)):
            if one in ready:
                data = one.recv(65536)
                if not data:
                    return
                other.sendall(data)


def main():
    certificate, key, port, server_port = sys.argv[1:]
    context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
    context.load_cert_chain(certificate, key)
    with socket.create_server(("127.0.0.1", int(port))) as listening:
        while True:
            connection, _ = listening.accept()
            try:
                with context.wrap_socket(connection, server_side=True) as client:
                    with socket.create_connection(("127.0.0.1", int(server_port))) as server:
                        hand_on(client, server)
            except (ssl.SSLError, OSError):
                pass


main()
